#include "Service/Upstream/Upstreams.h"

#include "Service/RunningService.h"
#include "Support/TLSServer.h"

using namespace lumarin::service;
using namespace std::chrono_literals;
using namespace tests;

namespace {

std::string pieceOf(const std::string& text, const char* reason = "") {
    const nlohmann::json data = {{"choices", {{{"delta", {{"content", text}}}, {"finish_reason", reason}}}}};
    return chunk("data: " + data.dump() + "\n\n");
}

// Counts the requests, and answers each with the same bytes.
struct CountingServer {
    explicit CountingServer(std::string bytes, bool thenCloses = false)
        : server(nullptr, [this, bytes = std::move(bytes), thenCloses](TLSConnection& connection) {
              while (connection.readRequest() && ++asked > 0 && connection.send(bytes) && !thenCloses)
                  continue;
          }) {}

    Upstreams::Choice choice(int weight = 0) const { return at(server.port, weight); }
    static Upstreams::Choice at(int port, int weight = 0) {
        return {{.url = "http://127.0.0.1:" + std::to_string(port),
                 .model = "",
                 .key = "",
                 .silence = 1s,
                 .authorities = nullptr},
                weight};
    }

    std::atomic<int> asked = 0;
    TLSServer server;
};

httplib::Result askForSample(const RunningService& service) {
    return service.client()->Post("/v1/free", RunningService::wholeRequest("样品").dump(),
                                  "application/json");
}

std::string wholeAnswer(const std::string& text) {
    return streamHead + pieceOf(text, "stop") + chunk("data: [DONE]\n\n") + streamEnd;
}

} // namespace

TEST(Upstreams, AskTheNextOneWhileNothingHasBegun) {
    const auto text = [](const httplib::Result& result) { return result.value().body; };
    const std::tuple<std::string, const char*, bool> cases[] = {
        {answer("429 Too Many Requests", "Retry-After: 60\r\n", "{}"), R"({"text":"Second"})", false},
        {answer("503 Service Unavailable", "", "{}"), R"({"text":"Second"})", false},
        {answer("401 Unauthorized", "", "{}"), R"({"text":"Second"})", false},
        {answer("400 Bad Request", "", "{}"), R"({"text":"Second"})", true}, // Too long for it, perhaps.
        {"", R"({"text":"Second"})", false},                                 // Says nothing.
        {wholeAnswer("First"), R"({"text":"First"})", true},
    };
    for (const auto& [said, expected, isWell] : cases) {
        const CountingServer first(said);
        const CountingServer second(wholeAnswer("Second"));
        const Upstreams upstreams({first.choice(), second.choice()});
        const RunningService service(upstreams);
        EXPECT_EQ(text(askForSample(service)), expected) << said;
        EXPECT_EQ(upstreams.health()[0].isWell, isWell) << said;
        // One that has failed rests.
        EXPECT_EQ(text(askForSample(service)), expected) << said;
        EXPECT_EQ(first.asked, isWell ? 2 : 1) << said;
        const auto metrics = service.client()->Get("/metrics").value().body;
        EXPECT_NE(metrics.find(std::string("lumarin_upstream_up{upstream=\"1\"} ") + (isWell ? "1" : "0")),
                  std::string::npos);
    }
    const CountingServer breaking(streamHead + pieceOf("Fir"), true);
    const CountingServer second(wholeAnswer("Second"));
    const Upstreams upstreams({breaking.choice(), second.choice()});
    const RunningService service(upstreams);
    const auto streamed = service.client()->Post(
        "/v1/translate", RunningService::streamRequest("样品").dump(), "application/json");
    EXPECT_FALSE(streamed && streamed->body.find("[DONE]") != std::string::npos);
    EXPECT_EQ(second.asked, 0);
}

TEST(Upstreams, ShareByWeightAndLeaveTheReserveAlone) {
    const CountingServer reserve(wholeAnswer("Reserve"));
    const CountingServer strong(wholeAnswer("Strong"));
    const CountingServer weak(wholeAnswer("Weak"));
    const int nobody = freePort();
    const Upstreams upstreams(
        {reserve.choice(), strong.choice(3), weak.choice(1), CountingServer::at(nobody, 4)});
    const RunningService service(upstreams);
    for (int number = 0; number < 12; ++number)
        EXPECT_EQ(askForSample(service).value().status, 200);
    EXPECT_EQ(reserve.asked, 0);
    EXPECT_NEAR(strong.asked, 9, 1);
    EXPECT_NEAR(weak.asked, 3, 1);
}

TEST(Upstreams, AreAskedAgainAfterARestThatGrows) {
    UpstreamHealth health;
    const auto start = UpstreamHealth::Clock::now();
    health.fail(start, std::nullopt);
    EXPECT_FALSE(health.mayBeAsked(start + 999ms));
    EXPECT_TRUE(health.mayBeAsked(start + 1s));
    health.ask(start + 1s); // By one client, until that knows.
    EXPECT_FALSE(health.mayBeAsked(start + 1s));
    for (int number = 0; number < 100; ++number)
        health.fail(start, std::nullopt);
    EXPECT_TRUE(health.mayBeAsked(start + 64s));
    health.fail(start, 90s);
    EXPECT_FALSE(health.mayBeAsked(start + 89s));
    health.succeed();
    EXPECT_TRUE(health.isWell() && health.mayBeAsked(start));
}
