#include "Acceptance/TestEditor.h"

#include "Desktop/Windows.h"
#include "Platform/Desktop/X11/Server/ActiveWindow.h"

#include <cstring>

namespace tests {
namespace {

ClientScript withField(ClientScript script) {
    script.hasField = true;
    return script;
}

} // namespace

TestEditor::TestEditor(ClientScript script) : client(withField(std::move(script))) {
    if (!comesTrue([this] { return platform::desktop::activeWindow(x) == window(); }))
        throw std::runtime_error("The editor does not come to the front");
}

void TestEditor::setUp(const std::string& marked, std::chrono::milliseconds keyDelay,
                       std::chrono::milliseconds pasteDelay) const {
    x.setProperty(window(), x.atom("TEST_FIELD"), XCB_ATOM_STRING, marked);
    platform::desktop::sendMessage(x, window(), window(), "TEST_FIELD",
                                   static_cast<std::uint32_t>(keyDelay.count()),
                                   static_cast<std::uint32_t>(pasteDelay.count()));
    // It takes the property away before it shows the field.
    if (!comesTrue([&] { return !x.property(window(), x.atom("TEST_FIELD")) && content() == marked; }, 30s))
        throw std::runtime_error("The editor does not hold " + marked);
}

std::string TestEditor::content() const {
    return x.property(window(), x.atom("TEST_TEXT")).value_or(platform::desktop::XProperty{}).bytes;
}

bool TestEditor::comesToHold(const std::string& marked) const {
    return comesTrue([&] { return content() == marked; });
}

Clock::time_point TestEditor::pasteKeyTime() const {
    Clock::time_point time;
    std::memcpy(&time, x.property(window(), x.atom("TEST_PASTE_KEY")).value().bytes.data(), sizeof time);
    return time;
}

} // namespace tests
