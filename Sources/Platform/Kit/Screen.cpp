#include "Platform/Kit/Screen.h"

#include "Platform/Host.h"

namespace platform {

std::optional<Screen> Screen::mainScreen() {
    return Host::current().windowServer().mainScreen();
}

} // namespace platform
