#include "Service/FoundModels.h"

#include "Service/RunningService.h"
#include "Service/UpstreamCheck.h"
#include "Support/ComesTrue.h"
#include "Support/TLSServer.h"

#include <array>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <sstream>

using namespace lumarin::service;
using namespace std::chrono_literals;
using namespace tests;

namespace {

// A model server with a list of models; counts what it is asked besides.
struct ModelServer {
    explicit ModelServer(std::string models)
        : server(nullptr, [this, list = std::move(models)](TLSConnection& connection) {
              while (const auto request = connection.readRequest()) {
                  if (request->head.starts_with("GET /v1/models HTTP/1.1\r\n") && request->body.empty()) {
                      connection.send(answer("200 OK", "Content-Type: application/json\r\n", list));
                      continue;
                  }
                  ++others;
                  connection.send(
                      streamHead
                      + chunk(R"(data: {"choices":[{"delta":{"content":"Hello"},"finish_reason":"stop"}]})"
                              "\n\n")
                      + chunk("data: [DONE]\n\n") + streamEnd);
              }
          }) {}

    std::uint16_t port() const { return static_cast<std::uint16_t>(server.port); }

    std::atomic<int> others = 0;
    TLSServer server;
};

void look(FoundModels& models) {
    asio::io_context loop;
    asio::co_spawn(loop, models.look(), asio::detached);
    loop.run();
}

constexpr const char* chats = R"({"object":"list","data":[{"id":"bge-m3"},{"id":"chat-1"},{"id":"chat-2"}]})";

} // namespace

TEST(FoundModels, AreThoseToChatWith) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {chats, "", "chat-1"},
        {chats, "chat-2", "chat-2"},
        {chats, "bge-m3", "bge-m3"}, // Named, it is meant.
        {chats, "chat-3", ""},
        {R"({"data":[{"id":"Nomic-Embed-Text"},{"id":"x","type":"embeddings"}]})", "", ""},
        {R"({"data":[1,{"id":2},{}, {"id":""},{"id":"m"}]})", "", "m"},
        {R"({"data":{"id":"m"}})", "", ""},
        {"<html>", "", ""},
        {"[]", "", ""},
    };
    for (const auto& [list, wanted, expected] : cases)
        EXPECT_EQ(chatModel(list, wanted), expected) << list;
    EXPECT_EQ(chatModel(R"({"data":)" + std::string(1'000'000, '['), ""), "");
}

TEST(FoundModels, AnswerAsSoonAsThereAreAny) {
    const TLSServer silent(nullptr, [](TLSConnection& connection) { connection.waitForClose(); });
    const TLSServer senseless(nullptr, [](TLSConnection& connection) { connection.send("220 mail\r\n"); });
    const ModelServer embeds(R"({"data":[{"id":"nomic-embed-text"}]})");
    const ModelServer first(chats);
    const ModelServer second(chats);
    const auto none = static_cast<std::uint16_t>(freePort());
    std::array ports{none,
                     static_cast<std::uint16_t>(silent.port),
                     static_cast<std::uint16_t>(senseless.port),
                     embeds.port(),
                     none,
                     none};
    std::vector<std::string> events;
    const Log log([&](const std::string& line) { events.push_back(line); });
    FoundModels models({.url = "", .model = "", .key = "", .authorities = nullptr}, log, ports);
    const auto start = std::chrono::steady_clock::now();
    look(models);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 3s);
    EXPECT_FALSE(models.model());
    EXPECT_EQ(models.name(), "gloss");

    // They have started later.
    ports[4] = first.port();
    ports[5] = second.port();
    look(models);
    EXPECT_EQ(models.model(),
              (LocalModel{"http://127.0.0.1:" + std::to_string(first.port()) + "/v1", "chat-1"}));
    EXPECT_EQ(models.name(), "chat-1");
    ASSERT_EQ(events.size(), 1U);
    EXPECT_NE(events[0].find("--upstream gloss"), std::string::npos);
    EXPECT_EQ(first.others + second.others + embeds.others, 0);

    const RunningService service(models);
    const auto answered = service.client()->Post(
        "/v1/free", RunningService::wholeRequest("样品", "JA").dump(), "application/json");
    EXPECT_EQ(answered.value().body, R"({"text":"Hello"})");
}

TEST(UpstreamCheck, SaysWhatToMend) {
    const auto refusing = [](const char* status, const char* body = "{}") {
        return [=](TLSConnection& connection) {
            while (connection.readRequest() && connection.send(answer(status, "", body)))
                continue;
        };
    };
    const std::pair<TLSServer::Script, const char*> cases[] = {
        {refusing("401 Unauthorized"), "--key-file"},
        {refusing("404 Not Found", R"({"error":{"message":"model \"m\" not found"}})"), "--model NAME"},
        {refusing("404 Not Found"), "base address"},
        {refusing("200 OK", "<html>"), "/chat/completions"},
        {[](TLSConnection& connection) { connection.waitForClose(); }, "--timeout"},
    };
    const auto check = [](int port) {
        const Upstream upstream({.url = "http://127.0.0.1:" + std::to_string(port) + "/v1",
                                 .model = "m",
                                 .key = "",
                                 .silence = 1s,
                                 .authorities = nullptr});
        std::ostringstream out;
        const bool isWell = checkUpstream(upstream, 5s, out);
        return std::pair(isWell, out.str());
    };
    for (const auto& [script, mending] : cases) {
        const TLSServer server(nullptr, script);
        const auto [isWell, said] = check(server.port);
        EXPECT_FALSE(isWell) << mending;
        EXPECT_NE(said.find(mending), std::string::npos) << said;
    }
    EXPECT_NE(check(freePort()).second.find("Is the model server running"), std::string::npos);
    const ModelServer good(chats);
    const auto [isWell, said] = check(good.port());
    EXPECT_TRUE(isWell);
    EXPECT_NE(said.find("It works: Hello\nFirst piece after "), std::string::npos) << said;
}
