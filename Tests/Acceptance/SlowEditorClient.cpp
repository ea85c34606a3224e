#include "Acceptance/SlowEditorClient.h"

#include <nlohmann/json.hpp>

namespace tests {

SlowEditorClient::SlowEditorClient(const Display& display) : process(display.start({LUMARIN_SLOW_EDITOR})) {
    Display::awaitFrontWindow("slow-editor");
}

void SlowEditorClient::setUp(const std::string& text, std::size_t from, std::size_t to,
                             std::chrono::milliseconds keyDelay, std::chrono::milliseconds fetchDelay) const {
    nlohmann::json command{{"text", text},
                           {"from", from},
                           {"to", to},
                           {"keyDelay", keyDelay.count()},
                           {"fetchDelay", fetchDelay.count()}};
    ask(command.dump());
}

SlowEditorClient::Content SlowEditorClient::content() const {
    const auto report = nlohmann::json::parse(ask("{}"));
    return {report["text"], report["from"], report["to"],
            Clock::time_point(Clock::duration(report["pasteKeyTime"].get<Clock::rep>()))};
}

std::string SlowEditorClient::ask(const std::string& command) const {
    process->writeLine(command);
    return process->awaitLine("{", 30s).text;
}

} // namespace tests
