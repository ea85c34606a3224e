#include "Platform/Desktop/Hold/HoldCommands.h"

#include <algorithm>

namespace platform::desktop {

bool HoldCommands::perform(std::string_view command, StartOrder started) {
    if (command == "press" || (command == "toggle" && !key.isDown())) {
        key.press();
        if (started < lastRelease)
            key.release();
    } else if (command == "release" || command == "toggle") {
        lastRelease = std::max(lastRelease, started);
        key.release();
    } else if (command == "cancel") {
        key.abandon();
    } else {
        return false;
    }
    return true;
}

} // namespace platform::desktop
