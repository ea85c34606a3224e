#include "Service/Server.h"

#include "Service/Gloss.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <httplib.h>
#include <mutex>
#include <nlohmann/json.hpp>
#include <thread>

using namespace lumarin::service;
using namespace tests;

namespace {

constexpr const char* json = "application/json";

// The service on a free port, and a client that trusts nothing but its certificate.
struct ServerTest : testing::Test {
    ~ServerTest() override {
        server.stop();
        EXPECT_TRUE(running.joinable());
        running.join();
        EXPECT_TRUE(endedInOrder);
    }

    std::unique_ptr<httplib::SSLClient> clientFor(const std::string& host) {
        auto made = std::make_unique<httplib::SSLClient>(host, port);
        made->set_ca_cert_path(files.certificate.c_str());
        made->set_keep_alive(true);
        return made;
    }
    // What the one-piece service makes of a body.
    nlohmann::json translated(const std::string& body, const char* type = json) {
        auto answer = client->Post("/v1/free", body, type);
        EXPECT_EQ(answer.value().status, 200);
        return nlohmann::json::parse(answer->body).at("text");
    }

    static nlohmann::json streamRequest(const std::string& text, const std::string& language = "EN") {
        return {{"text", text}, {"system_prompt", ""}, {"target_language", language}, {"stream", true}};
    }
    static nlohmann::json freeRequest(const std::string& text, const std::string& language = "EN") {
        return {{"text", text}, {"source_lang", "ZH"}, {"target_lang", language}};
    }

    TemporaryFolder folder;
    CertificateFiles files = ensureCertificate(folder / "service.pem");
    Gloss gloss;
    std::mutex mutex;
    std::vector<std::string> log;
    Server server{gloss, files, [this](const std::string& line) {
                      std::lock_guard lock(mutex);
                      log.push_back(line);
                  }};
    std::uint16_t port = server.bind("127.0.0.1", 0);
    bool endedInOrder = false;
    std::thread running{[this] { endedInOrder = server.run(); }};
    std::unique_ptr<httplib::SSLClient> client = clientFor("127.0.0.1");
};

} // namespace

TEST_F(ServerTest, StreamsATranslationWordByWord) {
    auto answer = client->Post("/v1/translate", streamRequest("样品的报价？").dump(), json);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 200);
    EXPECT_EQ(answer->get_header_value("Content-Type"), "text/event-stream");
    EXPECT_EQ(answer->body, "data: {\"choices\":[{\"delta\":{\"content\":\"Sample\"}}]}\n\n"
                            "data: {\"choices\":[{\"delta\":{\"content\":\" quote?\"}}]}\n\n"
                            "data: [DONE]\n\n");
}

TEST_F(ServerTest, AnswersInOnePieceAndToAWarmUpByEitherName) {
    EXPECT_EQ(translated(freeRequest("“样品”\n😊").dump()), "“Sample”\n😊");
    // Command-line clients call every body a form; it may be long.
    const std::string text(1'000'000, 'a');
    EXPECT_EQ(translated(freeRequest(text).dump(), "application/x-www-form-urlencoded"), text);
    auto warmUp = clientFor("localhost")->Head("/v1/translate");
    ASSERT_TRUE(warmUp) << httplib::to_string(warmUp.error());
    EXPECT_EQ(warmUp->status, 200);
}

TEST_F(ServerTest, RefusesWithTheRightStatusAndASentence) {
    auto without = [](nlohmann::json body, const char* member) {
        body.erase(member);
        return body.dump();
    };
    auto notStreamed = streamRequest("好");
    notStreamed["stream"] = false;
    auto tooLong = freeRequest(std::string(std::size_t{1024} * 1024, 'a')).dump();
    const std::tuple<const char*, const char*, std::string, int, const char*> cases[] = {
        {"POST", "/v1/free", "{", 400, "not a JSON object"},
        {"POST", "/v1/free", "[]", 400, "not a JSON object"},
        {"POST", "/v1/free", "{\"text\":\"\xff\"}", 400, "UTF-8"},
        {"POST", "/v1/free", without(freeRequest("好"), "text"), 400, "\"text\" is missing"},
        {"POST", "/v1/free", without(freeRequest("好"), "target_lang"), 400, "\"target_lang\" is missing"},
        {"POST", "/v1/translate", freeRequest("好").dump(), 400, "\"system_prompt\" is missing"},
        {"POST", "/v1/translate", notStreamed.dump(), 400, "\"stream\" is not true"},
        {"POST", "/v1/translate", streamRequest("好", "JA").dump(), 501, "--upstream"},
        {"POST", "/v1/free", freeRequest("好", "JA").dump(), 501, "--upstream"},
        {"POST", "/v1/free", tooLong, 413, "1 MiB"},
        {"POST", "/v1/other", "{}", 404, "nothing at this address"},
        {"GET", "/v1/translate", "", 405, "method"},
        {"PUT", "/v1/free", "{}", 405, "method"},
    };
    for (const auto& [method, path, body, status, sentence] : cases) {
        httplib::Request request;
        request.method = method;
        request.path = path;
        request.body = body;
        auto answer = client->send(request);
        ASSERT_TRUE(answer) << path << ' ' << sentence;
        EXPECT_EQ(answer->status, status) << path << ' ' << sentence;
        EXPECT_NE(answer->body.find(sentence), std::string::npos) << answer->body;
    }
    EXPECT_EQ(client->Put("/v1/translate", "", json)->get_header_value("Allow"), "HEAD, POST");
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
        json);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 413);
    EXPECT_EQ(client->Head("/v1/translate").value().status, 200);
}

TEST_F(ServerTest, LogsALineForARequestAndNothingOfWhatItSaid) {
    client->Post("/v1/free", freeRequest("样品").dump(), json);
    client->Post("/secret", "secret", "text/plain");
    std::lock_guard lock(mutex);
    ASSERT_EQ(log.size(), 2U);
    EXPECT_TRUE(log[0].starts_with("POST /v1/free 200 ")) << log[0];
    EXPECT_TRUE(log[1].starts_with("POST (unknown path) 404 ")) << log[1];
}

TEST_F(ServerTest, EndsAtOnceWithAnIdleConnectionOpen) {
    ASSERT_TRUE(client->Head("/v1/translate"));
    auto start = std::chrono::steady_clock::now();
    server.stop();
    running.join();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
    running = std::thread([] {});
}

TEST_F(ServerTest, RefusesAPortInUse) {
    Server second(gloss, files, [](const std::string&) {});
    EXPECT_THROW(second.bind("127.0.0.1", port), std::runtime_error);
    EXPECT_THROW(second.bind("192.0.2.1", 0), std::runtime_error);
}
