#include "Core/LLMTranslator.h"
#include "Core/Logger.h"
#include "Network/TestService.h"
#include "Platform/Headless/HeadlessHost.h"
#include "Support/Files.h"
#include "Support/Streams.h"

using namespace lumarin;
using namespace tests;

namespace {

// A machine in memory whose background and network are real.
class NetworkHost : public platform::headless::HeadlessHost {
public:
    using HeadlessHost::HeadlessHost;
    platform::Executor& backgroundExecutor() override { return worker.runLoop(); }

private:
    platform::WorkerThread worker;
};

class TranslationStreams : public testing::TestWithParam<Protocol> {
protected:
    void serve(TLSServer::Script script) {
        service.emplace(GetParam(), std::move(script));
        folder.write("Resources/Info.json", R"({"LumarinServiceURL": ")" + service->url() + R"("})");
        host.emplace(folder.path(), folder / "Resources");
        host->sessionMaker = [this](platform::HTTPSessionConfiguration configuration) {
            configuration.timeoutForRequest = std::min(configuration.timeoutForRequest, longestWait);
            return std::make_shared<platform::CurlSession>(configuration, service->authorityFile());
        };
        platform::Host::setCurrent(&*host);
        translator.emplace();
    }

    // The result, or the error's printed form.
    std::string translate(const LLMTranslator::ChunkHandler& onChunk = [](const std::string&) {}) {
        start(onChunk);
        return outcome();
    }

    void start(const LLMTranslator::ChunkHandler& onChunk) {
        result = {};
        task.emplace(spawn(caller.runLoop(), translateInto(onChunk)));
    }

    std::string outcome() {
        auto future = result.get_future();
        return future.wait_for(20s) == std::future_status::ready ? future.get() : "hangs";
    }

    platform::Duration longestWait = 1h;
    TemporaryFolder folder;
    std::optional<TestService> service;
    std::optional<NetworkHost> host;
    std::optional<LLMTranslator> translator;
    std::optional<platform::TaskHandle> task;
    std::promise<std::string> result;
    platform::WorkerThread caller;

private:
    platform::Task<void> translateInto(LLMTranslator::ChunkHandler onChunk) {
        std::string text;
        try {
            text = co_await translator->translateStream("报价", StylePreset::formal, TargetLanguage::english,
                                                        std::move(onChunk));
        } catch (const std::exception& error) {
            text = error.what();
        }
        result.set_value(text);
    }
};

INSTANTIATE_TEST_SUITE_P(, TranslationStreams, bothProtocols, nameOfProtocol);

} // namespace

TEST_P(TranslationStreams, ComeOneAfterTheOtherOverTheSameConnection) {
    const std::string body =
        ": ping\n\n" + deltaLine("Dear") + "\r\n" + deltaLine(" José 🚢") + "\ndata: [DONE]\n";
    std::atomic<std::size_t> length = 1;
    serve([&](TLSConnection& connection) {
        while (const auto request = connection.readRequest()) {
            if (request->head.starts_with("HEAD")) {
                connection.send(answer("200 OK", "", ""));
                continue;
            }
            connection.send(streamHead);
            for (std::size_t at = 0; at < body.size(); at += length) {
                bool isLast = at + length >= body.size();
                connection.send(chunk(body.substr(at, length)) + (isLast ? streamEnd : ""));
            }
        }
    });
    translator->warmup();
    for (int attempt = 0; attempt < 1000 && bytesOf(LumLog::logURL()).find("pre-warmed") == std::string::npos;
         ++attempt)
        std::this_thread::sleep_for(5ms);
    for (length = 1; length < 9; ++length) {
        std::vector<std::string> reports;
        EXPECT_EQ(translate([&](const std::string& soFar) { reports.push_back(soFar); }), "Dear José 🚢");
        EXPECT_EQ(reports, (std::vector<std::string>{"Dear", "Dear José 🚢"}));
    }
    EXPECT_EQ(service->connections(), 1);
}

TEST_P(TranslationStreams, EndWithTheReasonWhenTheServerFails) {
    const std::string endless(65536, 'x');
    const struct {
        TLSServer::Script finish;
        const char* error;
    } cases[] = {
        {[](TLSConnection& connection) { connection.reset(); }, "The connection to 127.0.0.1 was lost."},
        {[](TLSConnection& connection) { connection.waitForClose(); }, "The request timed out."},
        {[&](TLSConnection& connection) {
             while (connection.send(chunk(endless)))
                 continue;
         },
         "A line of the answer is too long."},
        {[](TLSConnection& connection) { connection.send(streamEnd); }, "Dear"},
    };
    longestWait = 1s;
    for (const auto& each : cases) {
        serve([&](TLSConnection& connection) {
            connection.readRequest();
            connection.sendSlowly({streamHead, chunk(deltaLine("Dear"))}, 20ms);
            each.finish(connection);
        });
        EXPECT_EQ(translate(), each.error);
    }
}

TEST_P(TranslationStreams, CloseTheConnectionWhenCancelled) {
    std::promise<void> begun;
    std::promise<void> closed;
    serve([&](TLSConnection& connection) {
        connection.readRequest();
        connection.send(streamHead + chunk(deltaLine("Dear")));
        connection.waitForClose();
        closed.set_value();
    });
    start([&](const std::string&) { begun.set_value(); });
    begun.get_future().wait_for(10s);
    task->cancel();
    EXPECT_EQ(outcome(), "The operation was cancelled.");
    EXPECT_EQ(closed.get_future().wait_for(10s), std::future_status::ready);
}
