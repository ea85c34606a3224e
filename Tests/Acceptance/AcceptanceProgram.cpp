#include "Acceptance/AcceptanceProgram.h"

#include "Support/Files.h"

#include <nlohmann/json.hpp>

namespace tests {

std::string installProgram(const TemporaryFolder& folder, const ServiceDouble& service) {
    const auto program = folder / "installed";
    std::filesystem::create_directories(program);
    for (const std::filesystem::path file : {LUMARIN_PROGRAM, LUMARIN_LIBRARY, LUMARIN_NETWORK})
        std::filesystem::copy_file(file, program / file.filename());
    std::filesystem::copy(LUMARIN_RESOURCES, program / "Resources", std::filesystem::copy_options::recursive);
    auto info = nlohmann::json::parse(bytesOf(program / "Resources" / "Info.json"));
    info["LumarinServiceURL"] = service.url();
    info["LumarinServiceCertificate"] = "test.pem";
    folder.write("installed/Resources/Info.json", info.dump());
    folder.write("installed/Resources/test.pem", service.certificatePEM());
    return program / "Lumarin";
}

AcceptanceProgram::AcceptanceProgram(const Display& display, const ServiceDouble& service)
    : running(display.start({installProgram(display.home, service)})) {
    running->awaitLine("[Hotkey] Ready");
    running->awaitLine("App started");
    comesTrue([this] { return running->output().find("[LLM] Connection pre-warmed") != std::string::npos; });
}

Clock::time_point AcceptanceProgram::gesture(Person& person) {
    person.press(Key::rightControl);
    running->awaitLine("[SM] Done: ");
    const auto letGo = person.release(Key::rightControl);
    running->awaitLine("[SM] Injected");
    return letGo;
}

void AcceptanceProgram::quickGesture(Person& person) {
    person.press(Key::rightControl);
    person.release(Key::rightControl);
    running->awaitLine("[SM] Injected", 30s);
}

void AcceptanceProgram::emptyGesture(Person& person) {
    person.press(Key::rightControl);
    running->awaitLine("[SM] Error: emptyText");
    person.release(Key::rightControl);
    std::this_thread::sleep_for(errorTime);
}

} // namespace tests
