#include "Platform/Desktop/WaylandWorkspace.h"

#include <array>

namespace platform::desktop {

std::optional<RunningApplication> WaylandWorkspace::frontmostApplication() {
    postedKeys.aim(std::nullopt);
    const auto front = toplevels.front();
    if (!front)
        return std::nullopt;
    auto name = names.nameOf(std::array{front->application});
    if (!name && !front->application.empty())
        name = front->application;
    return RunningApplication{front->number, std::move(name)};
}

void WaylandWorkspace::activate(const RunningApplication& application) {
    const auto number = static_cast<std::uint32_t>(application.identifier);
    // What is meant for a window that has been closed is for nobody, and keeps its number.
    postedKeys.aim(number);
    const auto front = toplevels.front();
    if (!front || front->number != number)
        toplevels.activate(number);
}

} // namespace platform::desktop
