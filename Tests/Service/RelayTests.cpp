#include "Service/RawClient.h"
#include "Service/RunningService.h"
#include "Service/Upstream/Upstream.h"
#include "Support/ComesTrue.h"
#include "Support/TLSServer.h"

#include <future>
#include <mutex>

using namespace lumarin::service;
using namespace tests;

namespace {

constexpr const char* json = "application/json";

std::string event(const nlohmann::json& data) {
    return chunk("data: " + data.dump() + "\n\n");
}

std::string piece(const std::string& text, const char* reason = "") {
    return event({{"choices", {{{"index", 0}, {"delta", {{"content", text}}}, {"finish_reason", reason}}}}});
}

const std::string done = chunk("data: [DONE]\n\n") + streamEnd;

// Answers every request with the same bytes; closes the connection then if told to.
TLSServer::Script saying(const std::string& bytes, bool thenCloses = false) {
    return [=](TLSConnection& connection) {
        while (connection.readRequest() && connection.send(bytes) && !thenCloses)
            continue;
    };
}

// The service in front of a model server that follows a script.
struct Relay {
    explicit Relay(TLSServer::Script script, const RunningService::Adjust& adjust = {}, bool hasKey = true)
        : server(nullptr, std::move(script)),
          upstream({.url = "http://127.0.0.1:" + std::to_string(server.port) + "/v1",
                    .model = "model-1",
                    .key = hasKey ? "sk-secret" : "",
                    .parameters = {{"temperature", 0}},
                    .silence = 1s,
                    .authorities = nullptr}),
          service(upstream, adjust) {}

    // `onPiece` may end the request by returning false.
    httplib::Result stream(const std::function<bool(std::string)>& onPiece = {},
                           const std::string& text = "样品") const {
        httplib::Request request;
        request.method = "POST";
        request.path = "/v1/translate";
        request.set_header("Content-Type", json);
        request.body = RunningService::streamRequest(text).dump();
        if (onPiece)
            request.content_receiver = [&](const char* data, std::size_t size, auto...) {
                return onPiece({data, size});
            };
        return service.client()->send(request);
    }
    httplib::Result whole() const {
        return service.client()->Post("/v1/free", RunningService::wholeRequest("样品", "JA").dump(), json);
    }
    // The failure that the log gives for the last request.
    std::string failure() const {
        EXPECT_TRUE(comesTrue([&] { return service.log().back()["event"] == "request"; }));
        return service.log().back().value("failure", "");
    }

    TLSServer server;
    Upstream upstream;
    RunningService service;
};

} // namespace

TEST(Relay, AsksTheModelAndPassesEachPieceOnAsItComes) {
    std::mutex mutex;
    std::vector<TLSConnection::Request> asked;
    std::promise<void> arrived;
    const Relay relay([&, wait = arrived.get_future().share()](TLSConnection& connection) {
        while (auto request = connection.readRequest()) {
            std::unique_lock lock(mutex);
            asked.push_back(*request);
            lock.unlock();
            connection.send(streamHead + event({{"choices", {{{"delta", {{"role", "assistant"}}}}}}})
                            + piece("Sam"));
            wait.wait(); // The rest is not sent before the first piece has been seen at the other end.
            connection.send(
                chunk("data:\n\n") + piece("ple 🙂", "EOS_token")
                + chunk("data: {\"choices\":[{\"delta\":{\"content\":\"\\ud83d\"}}]}\n\n") // Half an emoji.
                + event({{"choices", nlohmann::json::array()}}) + chunk("data: [DONE] \n\n") + streamEnd);
        }
    });
    std::vector<std::string> pieces;
    const auto streamed = relay.stream([&](const std::string& received) {
        if (pieces.empty())
            arrived.set_value();
        pieces.push_back(received);
        return true;
    });
    ASSERT_TRUE(streamed);
    EXPECT_EQ(streamed->get_header_value("Content-Type"), "text/event-stream");
    EXPECT_EQ(pieces.front(), "data: {\"choices\":[{\"delta\":{\"content\":\"Sam\"}}]}\n\n");
    EXPECT_EQ(pieces.back(), "data: [DONE]\n\n");
    EXPECT_EQ(nlohmann::json::parse(relay.whole().value().body),
              (nlohmann::json{{"text", "Sample 🙂�"}}));

    // One connection carries both requests.
    EXPECT_EQ(relay.server.accepted, 1);
    const std::lock_guard lock(mutex);
    ASSERT_EQ(asked.size(), 2U);
    for (const char* line :
         {"POST /v1/chat/completions HTTP/1.1\r\n", "\r\nAuthorization: Bearer sk-secret\r\n"})
        EXPECT_NE(asked[0].head.find(line), std::string::npos) << asked[0].head;
    auto body = nlohmann::json::parse(asked[0].body);
    EXPECT_EQ(body,
              nlohmann::json::parse(R"({"model": "model-1", "stream": true, "temperature": 0, "messages": [
        {"role": "system", "content": "Be brief."}, {"role": "user", "content": "样品"}]})"));
    body = nlohmann::json::parse(asked[1].body);
    EXPECT_NE(body["messages"][0]["content"].get<std::string>().find("into Japanese"), std::string::npos);
    for (const auto& line : relay.service.log())
        for (const char* secret : {"sk-secret", "样品", "ample"})
            EXPECT_EQ(line.dump().find(secret), std::string::npos) << line;
}

// What the model server answers, and what the person is told.
TEST(Relay, SaysWhatIsWrongWithTheModelServer) {
    const auto refusing = [](const char* status, const char* headers = "",
                             const char* body = R"({"error": {"message": "no luck"}})") {
        return saying(answer(status, headers, body));
    };
    const std::string html = answer("200 OK", "", "<html>");
    const std::tuple<TLSServer::Script, int, const char*, const char*> cases[] = {
        {refusing("401 Unauthorized"), 502, "refused the service’s key (401).", "refused key"},
        {refusing("403 Forbidden"), 502, "refused the service’s key (403).", "refused key"},
        {refusing("404 Not Found"), 502, "no chat-completions endpoint at the service’s --upstream (404)",
         "no endpoint"},
        {refusing("404 Not Found", "", R"({"error": {"message": "?", "code": "model_not_found"}})"), 502,
         "does not know the model “model-1” (404).", "unknown model"},
        {refusing("400 Bad Request", "", R"({"error": "Model Not Exist"})"), 502,
         "“model-1” (400). It says: Model", "unknown model"},
        {refusing("400 Bad Request", "", R"({"message": "The model's context is 4096 tokens"})"), 502,
         "refused the request (400).", "refused request"},
        {refusing("422 Unprocessable", "", R"({"detail": [{"msg": "no luck"}]})"), 502, "It says: no luck",
         "refused request"},
        {refusing("200 OK", "", "{\n\"error\": {\"message\": \"no luck\"}}"), 502, "failed. It says: no luck",
         "upstream error"},
        {refusing("400 Bad Request", "", R"({"error": "no luck for sk-1234 of org-abc."})"), 502,
         "It says: no luck for … of ….", "refused request"},
        {saying(streamHead + chunk("data: " + std::string(500'000, '[') + "\n\n") + done), 502,
         "makes no sense", "senseless answer"},
        {saying(answer("500 Oh", "", R"({"error":)" + std::string(60'000, '['))), 502, "failed (500).",
         "upstream error"},
        {saying(streamHead + piece(std::string(20'000, 'x')) + done), 502, "goes on far longer",
         "broken off"},
        {refusing("429 Too Many Requests", "Retry-After: 7\r\n"), 429, "It says: no luck", "upstream rate"},
        {refusing("400 Bad Request"), 502, "refused the request (400). It says: no luck", "refused request"},
        {refusing("500 Internal Server Error"), 502, "failed (500). It says: no luck", "upstream error"},
        {refusing("503 Service Unavailable"), 503, "is not ready (503).", "upstream error"},
        {saying(html), 502, "makes no sense", "senseless answer"},
        {saying("\xff\xfe garbage\r\n\r\n", true), 502, "model server", "senseless answer"},
        {saying(streamHead + chunk("data: {\"choi\n\n") + streamEnd), 502, "makes no sense",
         "senseless answer"},
        {saying(streamHead + chunk(std::string(3'000'000, 'x'))), 502, "makes no sense", "senseless answer"},
        {saying(streamHead + event({{"error", {{"message", "no memory"}}}}), true), 502, "says: no memory",
         "upstream error"},
        {saying(streamHead + chunk("error: {\"message\": \"no luck\"}\n\n") + done), 502, "says: no luck",
         "upstream error"},
        {saying(streamHead + event({{"object", "error"}, {"message", "no luck"}}) + done), 502,
         "says: no luck", "upstream error"},
        {saying(streamHead + event({{"x", 1}}) + done), 502, "makes no sense", "senseless answer"},
        {saying(streamHead + piece("", "MAX_TOKENS") + done), 502, "It says: MAX_TOKENS", "broken off"},
        {saying(streamHead + piece("", "length") + done), 502, "too long for the model", "broken off"},
        {saying("", true), 502, "The model server was lost.", "lost"},
        {[](TLSConnection& connection) {
             connection.readRequest();
             connection.reset();
         },
         502, "was lost.", "lost"},
        {[](TLSConnection& connection) { connection.waitForClose(); }, 504, "said nothing for 1 seconds",
         "time-out"},
    };
    for (const auto& [script, status, sentence, failure] : cases) {
        const Relay relay(script);
        for (const auto& result : {relay.stream(), relay.whole()}) {
            ASSERT_TRUE(result) << sentence;
            EXPECT_EQ(result->status, status) << sentence;
            EXPECT_NE(result->body.find(sentence), std::string::npos) << result->body << ": " << sentence;
            EXPECT_EQ(result->get_header_value("Retry-After"), status == 429   ? "7"
                                                               : status == 503 ? "1"
                                                                               : "");
            EXPECT_EQ(relay.failure(), failure) << sentence;
        }
        EXPECT_EQ(relay.service.log().back().dump().find("no luck"), std::string::npos);
    }
    Upstream nobody({.url = "http://127.0.0.1:1", .model = "", .key = "", .authorities = nullptr});
    const RunningService service(nobody);
    const auto answered =
        service.client()->Post("/v1/free", RunningService::wholeRequest("样品").dump(), json);
    EXPECT_EQ(answered.value().status, 502);
    EXPECT_EQ(answered->body, "The model server cannot be reached. Could not connect to 127.0.0.1.");
}

TEST(Relay, NeverLetsABrokenTranslationLookComplete) {
    const std::string begun = streamHead + piece("Sam");
    const std::pair<TLSServer::Script, const char*> cases[] = {
        {saying(begun, true), "lost"},
        {saying(begun + streamEnd), "lost"},
        {saying(begun + chunk("data: {\n\n")), "senseless answer"},
        {saying(begun + piece("ple", "length") + done), "broken off"},
        {saying(begun + piece("ple", "abort") + done), "broken off"},
        {saying(begun), "time-out"},
    };
    for (const auto& [script, failure] : cases) {
        const Relay relay(script);
        std::string received;
        const auto streamed = relay.stream([&](const std::string& bytes) {
            received += bytes;
            return true;
        });
        EXPECT_FALSE(streamed && streamed->status == 200) << failure;
        EXPECT_EQ(received.find("[DONE]"), std::string::npos) << failure;
        EXPECT_EQ(relay.failure(), failure);
        EXPECT_GE(relay.whole().value().status, 500) << failure;
    }
}

// The model server has long said all, in more bytes than there is room for on the way.
TEST(Relay, DoesNotTakeASlowClientForASilentModelServer) {
    std::string all = streamHead;
    for (int number = 0; number < 200; ++number)
        all += piece(std::string(50'000, 'a'));
    const Relay relay(saying(all + piece("", "stop") + done));
    bool hasSlept = false;
    const auto takeSlowly = [&](const std::string&) {
        if (!std::exchange(hasSlept, true))
            std::this_thread::sleep_for(1500ms); // More than the model server may be silent.
        return true;
    };
    const auto streamed = relay.stream(takeSlowly, std::string(700'000, 'a'));
    ASSERT_TRUE(streamed);
    EXPECT_EQ(relay.failure(), "");
}

TEST(Relay, LeavesTheModelServerAtOnceWhenTheClientHasGone) {
    std::atomic<Clock::rep> seen = 0;
    const Relay relay([&](TLSConnection& connection) {
        connection.readRequest();
        connection.send(streamHead + piece("Sam"));
        connection.waitForClose();
        seen = Clock::now().time_since_epoch().count();
    });
    relay.stream([](const std::string&) { return false; });
    const auto left = Clock::now().time_since_epoch().count();
    ASSERT_TRUE(comesTrue([&] { return seen != 0; }));
    EXPECT_LT(Clock::duration(seen - left), 100ms);
    EXPECT_EQ(relay.failure(), "client gone");
}

TEST(Relay, GivesStreamsUnderWayTheirTimeWhenItStops) {
    for (const bool abandons : {false, true}) {
        std::promise<void> stopped;
        Relay relay([wait = stopped.get_future().share()](TLSConnection& connection) {
            connection.readRequest();
            connection.send(streamHead + piece("Sam"));
            wait.wait();
            std::this_thread::sleep_for(50ms);
            connection.send(piece("ple") + done);
            connection.waitForClose();
        });
        std::promise<void> begun;
        auto client = std::async(std::launch::async, [&] {
            std::string received;
            auto result = relay.stream([&](const std::string& bytes) {
                if (received.empty())
                    begun.set_value();
                received += bytes;
                return true;
            });
            return result && received.find("[DONE]") != std::string::npos;
        });
        begun.get_future().wait();
        relay.service.server.stop();
        if (abandons)
            relay.service.server.abandon();
        else
            stopped.set_value();
        EXPECT_EQ(client.get(), !abandons);
        if (abandons)
            stopped.set_value();
        relay.service.stop();
        EXPECT_EQ(relay.failure(), abandons ? "stopped" : "");
    }
}

TEST(Relay, TakesNoMoreRequestsWhenItStops) {
    std::atomic<int> asked = 0;
    std::promise<void> stopped;
    Relay relay([&, wait = stopped.get_future().share()](TLSConnection& connection) {
        while (connection.readRequest() && ++asked > 0) {
            wait.wait();
            connection.send(streamHead + piece("Sample", "stop") + done);
        }
    });
    const std::string body = RunningService::streamRequest("样品").dump();
    const std::string request =
        "POST /v1/translate HTTP/1.1\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
    RawClient client(relay.service.port);
    client.send(request + request);
    ASSERT_TRUE(comesTrue([&] { return asked == 1; }));
    relay.service.server.stop();
    stopped.set_value();
    EXPECT_NE(client.rest().find("[DONE]"), std::string::npos);
    EXPECT_EQ(asked, 1);
}

TEST(Relay, HasTheModelToldItsOwnInstructionWhereThatIsFixed) {
    std::promise<std::string> told;
    const Relay relay(
        [&](TLSConnection& connection) {
            const auto request = connection.readRequest();
            told.set_value(request ? request->body : "");
            connection.send(streamHead + piece("Sample", "stop") + done);
        },
        [](RunningService::Options& options) { options.hasFixedPrompt = true; });
    EXPECT_EQ(relay.stream().value().status, 200);
    const std::string body = told.get_future().get();
    EXPECT_NE(body.find("into English"), std::string::npos) << body;
    EXPECT_EQ(body.find("Be brief."), std::string::npos);
}

TEST(Relay, LimitsWhatADeviceAsksFor) {
    const Relay relay(saying(streamHead + piece("Sample", "stop") + done),
                      [](RunningService::Options& options) { options.deviceRate = 2; });
    const auto ask = [&](const char* device) {
        return relay.service.client()
            ->Post("/v1/free", {{"X-Device-ID", device}}, RunningService::wholeRequest("样品").dump(), json)
            .value();
    };
    EXPECT_EQ(ask("a").status, 200);
    EXPECT_EQ(ask("a").status, 200);
    const auto refused = ask("a");
    EXPECT_EQ(refused.status, 429);
    EXPECT_EQ(refused.body, "This computer asks for too many translations. Try again in 30 s.");
    EXPECT_EQ(refused.get_header_value("Retry-After"), "30");
    EXPECT_EQ(ask("b").status, 200);
}

TEST(Relay, ChecksTheModelServersCertificate) {
    const Identity identity("DNS:localhost");
    const TLSServer server(&identity, saying(streamHead + piece("Sample", "stop") + done));
    TemporaryFolder folder;
    const auto trusted = std::make_shared<platform::TrustedCertificates>(
        folder.write("authority.pem", identity.certificatePEM()));
    const std::tuple<const char*, std::shared_ptr<const platform::TrustedCertificates>, int> cases[] = {
        {"localhost", trusted, 200}, {"localhost", nullptr, 502}, {"127.0.0.1", trusted, 502}};
    for (const auto& [host, authorities, status] : cases) {
        const Upstream upstream({.url = "https://" + std::string(host) + ":" + std::to_string(server.port),
                                 .model = "",
                                 .key = "",
                                 .authorities = authorities});
        const RunningService service(upstream);
        const auto result =
            service.client()->Post("/v1/free", RunningService::wholeRequest("样品").dump(), json);
        EXPECT_EQ(result.value().status, status) << host << result->body;
    }
}
