#include "Network/TestService.h"

#include <algorithm>
#include <list>

using namespace tests;
using platform::CurlSession;

namespace {

void expectContains(const std::string& text, const std::string& part) {
    EXPECT_PRED_FORMAT2(testing::IsSubstring, part, text);
}

// Begins an answer and leaves it open until the client goes.
void stall(TLSConnection& connection) {
    connection.readRequest();
    connection.send(streamHead + chunk("x\n"));
    connection.waitForClose();
}

// What holds whichever protocol the server speaks.
class CurlSessions : public testing::TestWithParam<Protocol> {
protected:
    void serve(TLSServer::Script script) {
        service.emplace(GetParam(), std::move(script));
        session.emplace(platform::HTTPSessionConfiguration{}, service->authorityFile());
    }

    std::optional<TestService> service;
    std::optional<CurlSession> session;
};

INSTANTIATE_TEST_SUITE_P(, CurlSessions, bothProtocols, nameOfProtocol);

} // namespace

TEST_P(CurlSessions, ReadsTheSameLinesHoweverTheBytesArrive) {
    const std::string body = ": ping\r\n\r\ndata: 外贸\r\ndata: é\rdata: \n\n:\ndata: 🚢";
    const std::vector<std::string> lines{": ping", "", "data: 外贸", "data: é", "data: ", "", ":", "data: 🚢"};
    std::atomic<std::size_t> length = 0;
    serve([&](TLSConnection& connection) {
        while (connection.readRequest()) {
            std::vector<std::string> pieces{streamHead};
            for (std::size_t at = 0; at < body.size(); at += length)
                pieces.push_back(chunk(body.substr(at, length)));
            pieces.emplace_back(streamEnd);
            connection.sendSlowly(pieces, 1ms);
        }
    });
    for (length = 1; length < 8; ++length)
        EXPECT_EQ(fetch(*session, get(service->url())).lines, lines) << length;
    EXPECT_EQ(service->connections(), 1);
}

TEST_P(CurlSessions, SendsALongBodyWithoutAskingFirst) {
    const std::string body(800'000, 'x');
    std::string head;
    serve(answering([&](const TLSConnection::Request& request) {
        head = request.head;
        return ok(request.body);
    }));
    auto request = post(service->url("/v1/translate"), body);
    request.headers.emplace_back("X-Device-ID", "7F0C");
    EXPECT_EQ(fetch(*session, request).lines, std::vector{body});
    std::transform(head.begin(), head.end(), head.begin(), [](unsigned char c) { return tolower(c); });
    expectContains(head, "post /v1/translate http/1.1\r\n");
    expectContains(head, "\r\nx-device-id: 7f0c\r\n");
    expectContains(head, "\r\ncontent-type: application/json\r\n");
    EXPECT_PRED_FORMAT2(testing::IsNotSubstring, "\r\nexpect:", head);
}

TEST_P(CurlSessions, GivesTheWholeBodyOfAnErrorStatus) {
    const std::string line(900'000, 'e');
    serve(answering(
        [&](const auto&) { return answer("500 Internal Server Error", "", line + "\r\n" + line); }));
    const Outcome outcome = fetch(*session, post(service->url(), "{}"));
    EXPECT_EQ(outcome.head->status, 500);
    EXPECT_EQ(outcome.lines, (std::vector{line, line}));
}

TEST_P(CurlSessions, UsesTheWarmUpsConnectionForTheFirstRequest) {
    serve(answering([](const TLSConnection::Request& request) {
        return request.head.starts_with("HEAD") ? answer("405 Method Not Allowed", "", "") : ok(request.body);
    }));
    platform::HTTPRequest warmUp = get(service->url());
    warmUp.method = "HEAD";
    Fetch first(*session, warmUp);
    // Only HTTP/2 shares a connection that is still being made.
    if (GetParam() == Protocol::http1)
        first.outcome();
    for (const std::string body : {"a", "b"})
        EXPECT_EQ(fetch(*session, post(service->url(), body)).lines, std::vector{body});
    EXPECT_EQ(first.outcome().head->status, 405);
    EXPECT_EQ(service->connections(), 1);
}

TEST_P(CurlSessions, TimesOutOnlyWhenNoByteComes) {
    serve([](TLSConnection& connection) {
        connection.readRequest();
        connection.send(ok(""));
        connection.readRequest();
        connection.send(streamHead);
        connection.sendSlowly(std::vector(5, chunk("x\n")), 150ms);
        connection.waitForClose();
    });
    fetch(*session, get(service->url()));
    platform::HTTPRequest request = get(service->url());
    request.timeout = 400ms;
    const auto start = Clock::now();
    const Outcome outcome = fetch(*session, request);
    EXPECT_EQ(outcome.lines.size(), 5U);
    EXPECT_EQ(outcome.error, "The request timed out.");
    EXPECT_GT(Clock::now() - start, 950ms);
    EXPECT_LT(Clock::now() - start, 5s);
}

TEST_P(CurlSessions, TimesOutBesideABusyTransfer) {
    std::atomic<bool> stalledHasEnded = false;
    serve([&](TLSConnection& connection) {
        const auto request = connection.readRequest();
        connection.send(streamHead + chunk("x\n"));
        if (request->head.starts_with("GET /stall"))
            return connection.waitForClose();
        while (!stalledHasEnded)
            connection.sendSlowly({chunk("x\n")}, 10ms);
        connection.send(streamEnd);
    });
    Fetch busy(*session, get(service->url("/busy")));
    busy.awaitLine();
    platform::HTTPRequest stalling = get(service->url("/stall"));
    stalling.timeout = 200ms;
    EXPECT_EQ(fetch(*session, stalling).error, "The request timed out.");
    stalledHasEnded = true;
    EXPECT_EQ(busy.outcome().error, "");
}

TEST_P(CurlSessions, SaysThatTheConnectionWasLost) {
    serve([](TLSConnection& connection) {
        connection.readRequest();
        connection.sendSlowly({streamHead, chunk("x\n")}, 50ms);
        connection.reset();
    });
    const Outcome outcome = fetch(*session, get(service->url()));
    EXPECT_EQ(outcome.lines, std::vector<std::string>{"x"});
    EXPECT_EQ(outcome.error, "The connection to 127.0.0.1 was lost.");
}

TEST_P(CurlSessions, ClosesACancelledTransferAtOnce) {
    std::promise<Clock::time_point> closed;
    serve([&](TLSConnection& connection) {
        stall(connection);
        closed.set_value(Clock::now());
    });
    Fetch transfer(*session, get(service->url()));
    transfer.awaitLine();
    const auto start = Clock::now();
    transfer.cancel();
    EXPECT_EQ(transfer.outcome().error, "cancelled");
    auto end = closed.get_future();
    ASSERT_EQ(end.wait_for(10s), std::future_status::ready);
    EXPECT_LT(end.get() - start, 500ms);
}

TEST_P(CurlSessions, EndsWhatIsUnderWayWithItself) {
    serve(stall);
    std::list<Fetch> transfers;
    for (int count = 0; count < 3; ++count)
        transfers.emplace_back(*session, get(service->url())).awaitLine();
    session.reset();
    for (Fetch& transfer : transfers)
        EXPECT_EQ(transfer.outcome().error, "The request was ended with its session.");
}

TEST_P(CurlSessions, GivesUpAnAnswerWithoutAnEnd) {
    for (const Reading reading : {Reading::lines, Reading::wholeBody}) {
        std::atomic<std::size_t> sent = 0;
        std::promise<void> closed;
        serve([&](TLSConnection& connection) {
            connection.readRequest();
            connection.send(streamHead);
            for (const std::string bytes = chunk(std::string(65536, 'x')); connection.send(bytes);)
                sent += bytes.size();
            closed.set_value();
        });
        Fetch transfer(*session, get(service->url()), reading);
        expectContains(transfer.outcome().error, "too long");
        ASSERT_EQ(closed.get_future().wait_for(10s), std::future_status::ready);
        EXPECT_LT(sent, platform::HTTPRequest{}.maximumBodyLength * 5 / 4);
    }
}

TEST_P(CurlSessions, MakesManyRequestsAtOnceOverFewConnections) {
    serve(answering([](const TLSConnection::Request& request) {
        std::this_thread::sleep_for(5ms);
        return ok(request.body);
    }));
    session.emplace(platform::HTTPSessionConfiguration{.maximumConnectionsPerHost = 2},
                    service->authorityFile());
    std::list<Fetch> transfers;
    for (int number = 0; number < 50; ++number)
        transfers.emplace_back(*session, post(service->url(), std::to_string(number)));
    int number = 0;
    for (Fetch& transfer : transfers)
        EXPECT_EQ(transfer.outcome().lines, std::vector{std::to_string(number++)});
    EXPECT_EQ(service->connections(), GetParam() == Protocol::http1 ? 2 : 1);
}

TEST(CurlSession, ReplacesAConnectionThatTheServerHasClosed) {
    const TestService service(Protocol::http1, [](TLSConnection& connection) {
        connection.readRequest();
        connection.send(ok("x"));
    });
    CurlSession session({}, service.authorityFile());
    for (int count = 0; count < 3; ++count)
        EXPECT_EQ(fetch(session, post(service.url(), "{}")).lines, std::vector<std::string>{"x"});
    EXPECT_EQ(service.connections(), 3);
}

TEST(CurlSession, ReportsTheHeadOfTheAnswerItself) {
    using Lines = std::vector<std::string>;
    const std::string good = "HTTP/1.1 200 OK\r\n";
    const std::string early = "The response from 127.0.0.1 ended too early.";
    const std::tuple<std::string, std::optional<int>, Lines, std::string> cases[] = {
        {"HTTP/1.1 103 Early Hints\r\nLink: <x>\r\n\r\n" + good + "Content-Length: 1\r\n\r\nx",
         200,
         {"x"},
         ""},
        {good + "Transfer-Encoding: chunked\r\nTrailer: T\r\n\r\n1\r\nx\r\n0\r\nT: 1\r\n\r\n",
         200,
         {"x"},
         ""},
        {good + "\r\nuntil\nthe end", 200, {"until", "the end"}, ""},
        {"HTTP/1.1 204 No Content\r\n\r\n", 204, {}, ""},
        {"220 mail.example ESMTP\r\n", std::nullopt, {"220 mail.example ESMTP"}, ""},
        {"", {}, {}, "127.0.0.1 closed the connection without a response."},
        {good + "Content-Length: 9\r\n\r\nx", 200, {}, early},
        {good + "Transfer-Encoding: chunked\r\n\r\n2\r\nx\n\r\n", 200, {"x"}, early},
    };
    for (const auto& [sent, status, lines, error] : cases) {
        const TestService service(Protocol::http1, [&bytes = sent](TLSConnection& connection) {
            connection.readRequest();
            connection.send(bytes);
        });
        CurlSession session({}, service.authorityFile());
        const Outcome outcome = fetch(session, get(service.url()));
        EXPECT_EQ(outcome.error, error) << sent;
        EXPECT_EQ(outcome.lines, lines) << sent;
        EXPECT_EQ(outcome.head ? outcome.head->status : std::nullopt, status) << sent;
    }
}

TEST(CurlSession, GivesUpAHeadWithoutAnEnd) {
    const std::pair<std::string, std::string> cases[] = {
        {"HTTP/1.1 200 OK\r\n", "X-Much: " + std::string(1000, 'x') + "\r\n"},
        {"", "HTTP/1.1 103 Early Hints\r\nLink: <" + std::string(1000, 'x') + ">\r\n\r\n"},
    };
    for (const auto& [begin, endless] : cases) {
        const TestService service(Protocol::http1, [&](TLSConnection& connection) {
            connection.readRequest();
            connection.send(begin);
            for (std::size_t sent = 0; sent < 100'000'000 && connection.send(endless);)
                sent += endless.size();
        });
        CurlSession session({}, service.authorityFile());
        EXPECT_EQ(fetch(session, get(service.url())).error, "The response from 127.0.0.1 is too long.");
    }
}

TEST(CurlSession, SendsNoHeaderThatHoldsAnother) {
    std::atomic<int> asked = 0;
    const TestService service(Protocol::http1, answering([&](const auto&) {
                                  ++asked;
                                  return ok("x");
                              }));
    CurlSession session({}, service.authorityFile());
    using namespace std::string_literals;
    for (const auto& value : {"a\r\nX: b"s, "a\nX: b"s, "a\0b"s, "\x1b"s, "\x7f"s}) {
        auto request = get(service.url());
        request.headers.emplace_back("Authorization", value);
        expectContains(fetch(session, request).error, "Authorization");
    }
    EXPECT_EQ(asked, 0);
}

TEST(CurlSession, FollowsSecureRedirectsOnly) {
    const TestService service(Protocol::http1, answering([](const TLSConnection::Request& request) {
                                  const auto path = request.head.substr(0, request.head.find(" HTTP"));
                                  for (const auto& [from, to] : {std::pair{"POST /moved", "/here"},
                                                                 {"POST /loop", "/loop"},
                                                                 {"POST /insecure", "http://127.0.0.1:9/"}})
                                      if (path == from)
                                          return answer("307 Temporary Redirect",
                                                        std::string("Location: ") + to + "\r\n", "moved");
                                  return ok(path + " " + request.body);
                              }));
    CurlSession session({}, service.authorityFile());
    const Outcome moved = fetch(session, post(service.url("/moved"), "text"));
    EXPECT_EQ(moved.head->status, 200);
    EXPECT_EQ(moved.lines, std::vector<std::string>{"POST /here text"});
    for (const auto& [path, error] : {std::pair{"/loop", "too often"}, {"/insecure", "not secure"}}) {
        const Outcome refused = fetch(session, post(service.url(path), "text"));
        EXPECT_FALSE(refused.head);
        expectContains(refused.error, error);
    }
}

TEST(CurlSession, TrustsNoServerThatItCannotVerify) {
    const std::string right = "IP:127.0.0.1";
    const Identity other(right);
    const std::tuple<std::string, std::optional<std::string>, std::string> cases[] = {
        {right, "its own", ""},
        {right, std::nullopt, "not trusted: it is self-signed."},
        {right, "", "not trusted"},
        {right, "-----BEGIN CERTIFICATE-----\nAAAA\n-----END CERTIFICATE-----\n", "not trusted"},
        {right, other.certificatePEM(), "not trusted"},
        {"DNS:elsewhere.test", "its own", "certificate is not for 127.0.0.1"},
        {"IP:127.0.0.2", "its own", "certificate is not for 127.0.0.1"},
    };
    for (const auto& [names, trusted, error] : cases) {
        std::atomic<bool> wasAsked = false;
        const TestService service(Protocol::http1, answering([&](const auto&) {
                                      wasAsked = true;
                                      return ok("x");
                                  }),
                                  names);
        const TemporaryFolder folder;
        std::optional<std::filesystem::path> file;
        if (trusted == "its own")
            file = service.authorityFile();
        else if (trusted)
            file = folder.write("authority.pem", *trusted);
        CurlSession session({}, file);
        // The second connection must not be spared the check.
        for (int count = 0; count < 2; ++count) {
            const Outcome outcome = fetch(session, post(service.url(), "secret"));
            expectContains(outcome.error, error);
            EXPECT_EQ(outcome.error.empty(), error.empty()) << outcome.error;
            EXPECT_EQ(wasAsked, error.empty()) << error;
        }
    }
    expectContains(
        fetch(*std::make_unique<CurlSession>(platform::HTTPSessionConfiguration{}, "/nowhere/authority.pem"),
              get("https://127.0.0.1:1/"))
            .error,
        "Could not connect");
}

TEST(CurlSession, TrustsACertificateThatIsMadeAfterIt) {
    const TestService service(Protocol::http1, answering([](const auto&) { return ok("x"); }));
    const TemporaryFolder folder;
    CurlSession session({}, folder / "authority.pem");
    expectContains(fetch(session, get(service.url())).error, "not trusted");
    std::filesystem::copy(service.authorityFile(), folder / "authority.pem");
    EXPECT_EQ(fetch(session, get(service.url())).error, "");
}

TEST(CurlSession, TimesOutWhileConnecting) {
    const TLSServer silent(nullptr, [](TLSConnection& connection) { connection.waitForClose(); });
    CurlSession session({});
    auto request = get("https://127.0.0.1:" + std::to_string(silent.port) + "/");
    request.timeout = 100ms;
    EXPECT_EQ(fetch(session, request).error, "The request timed out.");
}

TEST(CurlSession, SaysWhyAnAddressCannotBeAsked) {
    const TLSServer plain(nullptr, answering([](const auto&) { return ok("x"); }));
    const TLSServer noTLS(nullptr, [](TLSConnection& connection) { connection.send("220 ready\r\n"); });
    const std::string port = ":" + std::to_string(plain.port) + "/";
    const std::string nobody = ":" + std::to_string(freePort()) + "/";
    const std::pair<std::string, std::string> cases[] = {
        {"http://127.0.0.1" + port, ""},
        {"HTTP://LOCALHOST" + port, ""},
        {"http://127.1.2.3" + nobody, "Could not connect to 127.1.2.3."},
        {"http://[::1]" + nobody, "Could not connect to [::1]."},
        {"https://localhost" + nobody, "Could not connect to localhost."},
        {"https://127.0.0.1:" + std::to_string(noTLS.port),
         "A secure connection to 127.0.0.1 could not be made."},
        {"http://192.0.2.1/", "not be secure"},
        {"http://[::2]/", "not be secure"},
        {"http://127.0.0.1.example.test/", "not be secure"},
        {"http://localhost@192.0.2.1/", "not be secure"},
        {"http://192.0.2.1/#@localhost/", "not be secure"},
        {"file:///etc/passwd", "not a web address"},
        {"/v1/translate", "not a web address"},
        {"https://", "not a web address"},
        {"https://a b/", "not a web address"},
    };
    CurlSession session({});
    for (const auto& [url, error] : cases) {
        const Outcome outcome = fetch(session, get(url));
        expectContains(outcome.error, error);
        EXPECT_EQ(outcome.lines, std::vector<std::string>(error.empty(), "x")) << url;
    }
}
