#include "Core/LLMTranslator.h"
#include "Core/Logger.h"
#include "Network/TestService.h"
#include "Platform/Headless/HeadlessHost.h"
#include "Support/Files.h"
#include "Support/RunToEnd.h"
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

class TranslationStreams : public testing::TestWithParam<Protocol> {};
INSTANTIATE_TEST_SUITE_P(, TranslationStreams, bothProtocols, nameOfProtocol);

} // namespace

TEST_P(TranslationStreams, ComeOneAfterTheOtherOverTheSameConnection) {
    const std::string body =
        ": ping\n\n" + deltaLine("Dear") + "\r\n" + deltaLine(" José 🚢") + "\ndata: [DONE]\n";
    const TestService service(GetParam(), answering([&](const TLSConnection::Request& request) {
                                  return request.head.starts_with("HEAD")
                                             ? ok("")
                                             : streamHead + chunk(body) + streamEnd;
                              }));
    const TemporaryFolder folder;
    folder.write("Resources/Info.json", R"({"LumarinServiceURL": ")" + service.url() + R"("})");
    NetworkHost host(folder.path(), folder / "Resources");
    host.sessionMaker = [&](const platform::HTTPSessionConfiguration& configuration) {
        return std::make_shared<platform::CurlSession>(configuration, service.authorityFile());
    };
    platform::Host::setCurrent(&host);
    LLMTranslator translator;
    translator.warmup();
    EXPECT_TRUE(comesTrue([] { return bytesOf(LumLog::logURL()).find("pre-warmed") != std::string::npos; }));
    platform::WorkerThread caller;
    for (int round = 0; round < 3; ++round) {
        std::vector<std::string> reports;
        const auto report = [&](const std::string& soFar) { reports.push_back(soFar); };
        EXPECT_EQ(runToEnd(caller.runLoop(), translator.translateStream("报价", StylePreset::formal,
                                                                        TargetLanguage::english, report)),
                  "Dear José 🚢");
        EXPECT_EQ(reports, (std::vector<std::string>{"Dear", "Dear José 🚢"}));
    }
    EXPECT_EQ(service.connections(), 1);
}
