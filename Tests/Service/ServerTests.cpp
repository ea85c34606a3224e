#include "Service/Gloss/Gloss.h"
#include "Service/RawClient.h"
#include "Service/RunningService.h"
#include "Support/ComesTrue.h"
#include "Support/TLSServer.h"

#include <future>

using namespace lumarin::service;
using namespace tests;

namespace {

constexpr const char* jsonType = "application/json";

std::string longText() {
    std::string text;
    while (text.size() < 1'000'000)
        text += "请问这款样品的报价是多少？";
    return text;
}

struct ServerTest : testing::Test {
    // What the one-piece service makes of a body.
    nlohmann::json translated(const std::string& body, const char* type = jsonType) {
        auto answer = client->Post("/v1/free", body, type);
        EXPECT_EQ(answer.value().status, 200);
        return nlohmann::json::parse(answer->body).at("text");
    }

    TemporaryFolder updates;
    Gloss gloss;
    RunningService service{gloss, [this](Options& options) { options.appcast = updates.path(); }};
    std::unique_ptr<httplib::SSLClient> client = service.client();
};

} // namespace

TEST_F(ServerTest, StreamsATranslationWordByWord) {
    auto answer =
        client->Post("/v1/translate", RunningService::streamRequest("样品的报价？").dump(), jsonType);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 200);
    EXPECT_EQ(answer->get_header_value("Content-Type"), "text/event-stream");
    EXPECT_EQ(answer->body, "data: {\"choices\":[{\"delta\":{\"content\":\"Sample\"}}]}\n\n"
                            "data: {\"choices\":[{\"delta\":{\"content\":\" quote?\"}}]}\n\n"
                            "data: [DONE]\n\n");
}

TEST_F(ServerTest, AnswersInOnePieceAndToAWarmUpByEitherName) {
    EXPECT_EQ(translated(RunningService::wholeRequest("“样品”\n😊").dump()), "“Sample”\n😊");
    const std::string text(1'000'000, 'a');
    EXPECT_EQ(translated(RunningService::wholeRequest(text).dump(), "Application/JSON; charset=utf-8"), text);
    auto warmUp = service.client("localhost")->Head("/v1/translate");
    ASSERT_TRUE(warmUp) << httplib::to_string(warmUp.error());
    EXPECT_EQ(warmUp->status, 200);
}

TEST_F(ServerTest, RefusesWithTheRightStatusAndASentence) {
    auto without = [](nlohmann::json body, const char* member) {
        body.erase(member);
        return body.dump();
    };
    auto notStreamed = RunningService::streamRequest("好");
    notStreamed["stream"] = false;
    const std::tuple<const char*, const char*, std::string, int, const char*> cases[] = {
        {"POST", "/v1/free", "{", 400, "not a JSON object"},
        {"POST", "/v1/free", "[]", 400, "not a JSON object"},
        {"POST", "/v1/free", "{\"text\":\"\xff\"}", 400, "UTF-8"},
        {"POST", "/v1/free", R"({"text":)" + std::string(100'000, '['), 400, "nested too deep"},
        {"POST", "/v1/free", R"({"text": [1], "target_lang": "EN"})", 400, "\"text\""},
        {"POST", "/v1/free", without(RunningService::wholeRequest("好"), "text"), 400, "\"text\" is missing"},
        {"POST", "/v1/free", without(RunningService::wholeRequest("好"), "target_lang"), 400,
         "\"target_lang\" is missing"},
        {"POST", "/v1/translate", RunningService::wholeRequest("好").dump(), 400,
         "\"system_prompt\" is missing"},
        {"POST", "/v1/translate", notStreamed.dump(), 400, "\"stream\" is not true"},
        {"POST", "/v1/translate", RunningService::streamRequest("好", "JA").dump(), 501, "--upstream"},
        {"POST", "/v1/free", RunningService::wholeRequest("好", "en").dump(), 501, "--upstream"},
        {"POST", "/v1/other", "{}", 404, "nothing at this address"},
        {"GET", "/v1/translate", "", 405, "method"},
        {"PUT", "/v1/free", "{}", 405, "method"},
    };
    for (const auto& [method, path, body, status, sentence] : cases) {
        httplib::Request request;
        request.method = method;
        request.path = path;
        request.body = body;
        request.set_header("Content-Type", jsonType);
        auto answer = client->send(request);
        ASSERT_TRUE(answer) << path << ' ' << sentence << ' ' << httplib::to_string(answer.error());
        EXPECT_EQ(answer->status, status) << path << ' ' << sentence;
        EXPECT_NE(answer->body.find(sentence), std::string::npos) << answer->body;
        EXPECT_LE(answer->body.size(), 100U) << "as much as is shown: " << answer->body;
    }
    EXPECT_EQ(client->Put("/v1/translate", "", jsonType)->get_header_value("Allow"), "HEAD, POST");
}

// The answer is there long before the client has sent everything, and must not be lost by closing the
// connection.
TEST_F(ServerTest, LetsAClientThatSendsTooMuchReadWhy) {
    const auto tooLong = RunningService::wholeRequest(std::string(std::size_t{1024} * 1024, 'a')).dump();
    for (int number = 0; number < 30; ++number) {
        const auto answer = client->Post("/v1/free", tooLong, jsonType);
        ASSERT_TRUE(answer) << number << ' ' << httplib::to_string(answer.error());
        EXPECT_EQ(answer->status, 413);
        EXPECT_EQ(answer->body, "The text is too long: a request may have 1 MiB.");
    }
}

TEST_F(ServerTest, SpendsNothingForWebPages) {
    const std::string body = RunningService::wholeRequest("样品").dump();
    const std::string own = "https://127.0.0.1:" + std::to_string(service.port);
    const std::tuple<const char*, std::string, int> cases[] = {
        {jsonType, "", 200},     {jsonType, own, 200},    {jsonType, "https://evil.example", 403},
        {jsonType, "null", 403}, {"text/plain", "", 415}, {"application/x-www-form-urlencoded", "", 415},
    };
    for (const auto& [type, origin, status] : cases) {
        const auto headers = origin.empty() ? httplib::Headers{} : httplib::Headers{{"Origin", origin}};
        EXPECT_EQ(client->Post("/v1/free", headers, body, type).value().status, status) << type << origin;
    }
}

TEST_F(ServerTest, RefusesABodyOfUnknownLengthThatIsTooLong) {
    constexpr std::size_t length = std::size_t{3} * 1024 * 1024;
    auto answer = client->Post(
        "/v1/free",
        [](std::size_t offset, httplib::DataSink& sink) {
            static const std::string piece(65536, 'a');
            if (offset < length)
                return sink.write(piece.data(), piece.size());
            sink.done();
            return true;
        },
        jsonType);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 413);
    EXPECT_EQ(client->Head("/v1/translate").value().status, 200);
}

TEST_F(ServerTest, SpeaksToMonitorsAndLogsNothingOfWhatWasSaid) {
    client->Post("/v1/free", RunningService::wholeRequest("样品").dump(), jsonType);
    client->Post("/secret", "secret", "text/plain");
    EXPECT_EQ(client->Get("/healthz").value().status, 200);
    const auto metrics = client->Get("/metrics").value().body;
    for (const char* line : {"lumarin_requests_total{endpoint=\"/v1/free\",status=\"200\"} 1\n",
                             "lumarin_requests_total{endpoint=\"\",status=\"404\"} 1\n",
                             "lumarin_first_piece_seconds_bucket{le=\"60\"} 1\n", "lumarin_translations 0\n"})
        EXPECT_NE(metrics.find(line), std::string::npos) << line << metrics;
    const auto log = service.log();
    ASSERT_GE(log.size(), 3U); // The first line is the certificate's.
    EXPECT_EQ(log[1]["endpoint"], "/v1/free");
    EXPECT_EQ(log[1]["status"], 200);
    for (const auto& line : log)
        for (const char* said : {"secret", "样品", "ample"})
            EXPECT_EQ(line.dump().find(said), std::string::npos) << line;
}

TEST(ServerWithTokens, TranslatesForItsClientsAlone) {
    const TemporaryFolder folder;
    const auto file = folder / "tokens";
    const auto token = Tokens::add(file, "anna");
    const Gloss gloss;
    const RunningService service(gloss, [&](Options& options) {
        options.tokens = file;
        options.deviceRate = 2;
    });
    const auto client = service.client();
    const auto body = RunningService::wholeRequest("样品").dump();
    const auto statusWith = [&](const httplib::Headers& headers) {
        return client->Post("/v1/free", headers, body, jsonType).value().status;
    };
    const auto refused = client->Post("/v1/free", body, jsonType);
    EXPECT_EQ(refused->status, 401);
    EXPECT_EQ(refused->get_header_value("WWW-Authenticate"), "Bearer");
    EXPECT_LE(refused->body.size(), 100U) << "as much as is shown: " << refused->body;
    EXPECT_EQ(statusWith({{"Authorization", "Bearer anna.guessed"}}), 401);
    const std::string bearer = "Bearer " + token;
    EXPECT_EQ(statusWith({{"Authorization", bearer}}), 200);
    // What it says of itself besides does not count.
    EXPECT_EQ(statusWith({{"Authorization", bearer}, {"X-Device-ID", "one"}}), 200);
    EXPECT_EQ(statusWith({{"Authorization", bearer}, {"X-Device-ID", "two"}}), 429);
    EXPECT_EQ(client->Head("/v1/translate").value().status, 200);
    EXPECT_EQ(client->Get("/healthz").value().status, 200);
    for (const auto& line : service.log())
        EXPECT_EQ(line.dump().find(token.substr(5)), std::string::npos);
}

TEST_F(ServerTest, ServesTheFilesOfItsFolderAndNoOthers) {
    TemporaryFolder outside;
    const std::string package(200'000, 'p');
    updates.write("appcast.xml", "<rss/>");
    updates.write("packages/lumarin.deb", package);
    updates.write("empty.html", "");
    updates.write(".hidden", "x");
    updates.write(".git/config", "x");
    std::filesystem::create_symlink(outside.write("passwords", "x"), updates / "link");
    const std::tuple<const char*, int, const char*, std::string> cases[] = {
        {"/appcast/appcast.xml", 200, "application/xml; charset=utf-8", "<rss/>"},
        {"/appcast/packages/lumarin.deb", 200, "application/vnd.debian.binary-package", package},
        {"/appcast/empty.html", 200, "text/html; charset=utf-8", ""},
        {"/appcast/", 404, nullptr, ""},
        {"/appcast/packages", 404, nullptr, ""},
        {"/appcast/.hidden", 404, nullptr, ""},
        {"/appcast/.git/config", 404, nullptr, ""},
        {"/appcast/link", 404, nullptr, ""},
        {"/appcast/packages/../appcast.xml", 404, nullptr, ""},
        {"/appcast/%2e%2e/%2e%2e/etc/passwd", 404, nullptr, ""},
        {"/appcast//etc/passwd", 404, nullptr, ""},
        {"/appcast/appcast.xml%00.deb", 404, nullptr, ""},
    };
    for (const auto& [path, status, type, body] : cases) {
        const auto answer = client->Get(path);
        ASSERT_TRUE(answer) << path;
        EXPECT_EQ(answer->status, status) << path;
        if (status != 200)
            continue;
        EXPECT_EQ(answer->get_header_value("Content-Type"), type);
        EXPECT_EQ(answer->body, body);
        const auto head = client->Head(path);
        EXPECT_EQ(head.value().get_header_value("Content-Length"), std::to_string(body.size()));
    }
}

// Connections that send nothing, half a head, a body byte by byte: with every place taken by such clients the
// next one is served at once.
TEST_F(ServerTest, IsNotHeldUpBySlowClients) {
    const RunningService small(gloss, [](RunningService::Options& options) { options.connections = 8; });
    std::vector<std::unique_ptr<RawClient>> slow;
    for (int number = 0; number < 24; ++number) {
        slow.push_back(std::make_unique<RawClient>(small.port));
        const char* begun[] = {"", "POST /v1/fr", "POST /v1/free HTTP/1.1\r\nContent-Length: 9\r\n\r\n{"};
        slow.back()->send(begun[number % 3]);
    }
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(small.client()->Get("/healthz").value().status, 200);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}

TEST_F(ServerTest, IsNotHeldUpByALongText) {
    const auto since = [start = Translation::Clock::now()] { return Translation::Clock::now() - start; };
    auto translation = std::async(std::launch::async, [&] {
        translated(RunningService::wholeRequest(longText()).dump());
        return since();
    });
    const auto other = service.client();
    auto longest = since();
    while (translation.wait_for(std::chrono::milliseconds(1)) == std::future_status::timeout) {
        const auto start = since();
        EXPECT_EQ(other->Get("/healthz").value().status, 200);
        longest = std::max(longest, since() - start);
    }
    EXPECT_LT(longest, translation.get() / 2);
}

TEST_F(ServerTest, GivesALongTextUpWhenItsClientVanishes) {
    const std::string body = RunningService::wholeRequest(longText()).dump();
    for (int number = 0; number < 20; ++number) {
        RawClient vanishing(service.port);
        vanishing.send("POST /v1/free HTTP/1.1\r\nX-Device-ID: " + std::to_string(number)
                       + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
        std::this_thread::sleep_for(std::chrono::milliseconds(number));
    }
    EXPECT_TRUE(comesTrue([&] {
        return client->Get("/metrics").value().body.find("lumarin_translations 0\n") != std::string::npos;
    }));
    EXPECT_TRUE(std::ranges::any_of(service.log(), [](const auto& line) {
        return line.value("failure", "") == "client gone" && line["status"] == 499;
    }));
}

TEST_F(ServerTest, OutlivesWhatIsNoRequest) {
    const std::string post = "POST /v1/free HTTP/1.1\r\n";
    const std::string request = RunningService::streamRequest("样品").dump();
    const std::string chunked = chunk(RunningService::wholeRequest("样品").dump()) + streamEnd;
    const std::string trailer = "0\r\nX-Sum: 1\r\n\r\n";
    const std::pair<std::string, const char*> cases[] = {
        {std::string("\0\xff\r\n\r\n", 6), "HTTP/1.1 400"},
        {"GET " + std::string(10'000, 'a') + " HTTP/1.1\r\n\r\n", "HTTP/1.1 414"},
        {"GET /healthz HTTP/1.1\r\nX: " + std::string(40'000, 'a'), "HTTP/1.1 400"},
        {"GET /healthz HTTP/1.1\r\nRange: bytes=0-1,0-1,0-1\r\nConnection: close\r\n\r\n", "HTTP/1.1 200"},
        {post + "Content-Length: 99999999999999999999\r\n\r\n{}", "HTTP/1.1 413"},
        {post + "Transfer-Encoding: Chunked\r\nConnection: close\r\n\r\n" + chunked, "HTTP/1.1 200"},
        {post + "Transfer-Encoding: chunked\r\nConnection: close\r\n\r\n"
             + chunk(RunningService::wholeRequest("样品").dump()) + trailer,
         "HTTP/1.1 200"},
        {post + "Transfer-Encoding: chunked\r\n\r\n2;" + std::string(40'000, 'a'), "HTTP/1.1 400"},
        // Kept by no client of that time, and read by none in chunks.
        {"POST /v1/translate HTTP/1.0\r\nConnection: Keep-Alive\r\nContent-Length: "
             + std::to_string(request.size()) + "\r\n\r\n" + request,
         "HTTP/1.1 200"},
        {post + "Content-Length: -1\r\n\r\n{}", "HTTP/1.1 400"},
        {post + "Content-Length: 2\r\nContent-Length: 3\r\n\r\n{}", "HTTP/1.1 400"},
        {post + "Content-Length: 2\r\nTransfer-Encoding: chunked\r\n\r\n{}", "HTTP/1.1 400"},
        {post + "Transfer-Encoding: chunked\r\nContent-Length: 2\r\n\r\n{}", "HTTP/1.1 400"},
        {post + "Transfer-Encoding: gzip, chunked\r\n\r\n" + chunked, "HTTP/1.1 400"},
        {post + "Connection: close\r\n\r\n", "HTTP/1.1 411"},
        {post + "Transfer-Encoding: chunked\r\n\r\nzz\r\n", "HTTP/1.1 400"},
        {post + "Content-Length: 100000\r\nConnection: close\r\n\r\n" + std::string(100'000, '['),
         "HTTP/1.1 400"},
        {"GET /healthz HTTP/1.1\r\nContent-Length: 25\r\n\r\nGET /healthz HTTP/1.1\r\n\r\n", "HTTP/1.1 400"},
        // The body of a refused request is not the next request.
        {"POST /other HTTP/1.1\r\nContent-Length: 25\r\n\r\nGET /healthz HTTP/1.1\r\n\r\n", "HTTP/1.1 404"},
    };
    for (const auto& [bytes, expected] : cases) {
        RawClient raw(service.port);
        raw.send(bytes);
        const auto answer = raw.rest();
        EXPECT_TRUE(answer.starts_with(expected)) << bytes.substr(0, 80) << " -> " << answer;
        EXPECT_EQ(answer.find("HTTP/1.1", 1), std::string::npos) << answer;
        EXPECT_EQ(answer.find("chunked"), std::string::npos) << answer;
    }
    EXPECT_EQ(client->Get("/healthz").value().status, 200);
}

TEST_F(ServerTest, LetsAClientWaitForTheLeaveToSendItsBody) {
    const std::string body = RunningService::wholeRequest("样品").dump();
    RawClient raw(service.port);
    raw.send("POST /v1/free HTTP/1.1\r\nExpect: 100-continue\r\nConnection: close\r\nContent-Length: "
             + std::to_string(body.size()) + "\r\n\r\n");
    EXPECT_EQ(raw.some(), "HTTP/1.1 100 Continue\r\n\r\n");
    raw.send(body);
    EXPECT_TRUE(raw.rest().starts_with("HTTP/1.1 200"));
}

TEST_F(ServerTest, NeverTakesThePlaceOfADownload) {
    constexpr std::size_t length = 20'000'000;
    updates.write("package.deb", std::string(length, 'p'));
    const RunningService small(gloss, [&](Options& options) {
        options.connections = 2;
        options.appcast = updates.path();
    });
    RawClient raw(small.port);
    raw.send("GET /appcast/package.deb HTTP/1.1\r\nConnection: close\r\n\r\n");
    std::string answer = raw.some();
    std::vector<std::unique_ptr<httplib::SSLClient>> others; // Each takes the place of the one before.
    for (int number = 0; number < 3; ++number)
        EXPECT_EQ(others.emplace_back(small.client())->Get("/healthz").value().status, 200);
    answer += raw.rest();
    EXPECT_GT(answer.size(), length);
}

TEST_F(ServerTest, EndsAtOnceWithAnIdleConnectionOpen) {
    ASSERT_TRUE(client->Head("/v1/translate"));
    const auto start = std::chrono::steady_clock::now();
    service.stop();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
}

TEST_F(ServerTest, RefusesAPortInUse) {
    const Log log([](const std::string&) {});
    Server second(gloss, service.options, log);
    EXPECT_THROW(second.bind("127.0.0.1", service.port), std::runtime_error);
    EXPECT_THROW(second.bind("192.0.2.1", 0), std::runtime_error);
}
