#include "Platform/Desktop/Hold/HoldCommands.h"

#include <utility>

namespace platform::desktop {
namespace {

using namespace std::chrono_literals;

// Between two processes that a busy machine has started one behind the other.
constexpr auto longestLead = 500ms;

} // namespace

bool HoldCommands::perform(std::string_view command) {
    if (command == "press" || (command == "toggle" && !key.isDown())) {
        press();
    } else if (command == "release" || command == "toggle") {
        release();
    } else if (command == "cancel") {
        isAbandoned = key.isDown();
        key.abandon();
    } else {
        return false;
    }
    return true;
}

void HoldCommands::press() {
    const auto release = std::exchange(early, std::nullopt);
    isAbandoned = false;
    key.press();
    if (release && clock.now() - *release < longestLead)
        key.release();
}

void HoldCommands::release() {
    if (key.isDown())
        key.release();
    else if (!std::exchange(isAbandoned, false))
        early = clock.now();
}

} // namespace platform::desktop
