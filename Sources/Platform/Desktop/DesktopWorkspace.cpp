#include "Platform/Desktop/DesktopWorkspace.h"

#include "Platform/Desktop/Applications/ProgramName.h"
#include "Platform/Desktop/X11/Server/ActiveWindow.h"
#include "Platform/Desktop/X11/Server/WindowClass.h"

#include <array>

namespace platform::desktop {

namespace {

// A window of a process: the number of a window that is gone is given to another program's one day.
std::uint64_t identifierOf(xcb_window_t window, std::optional<pid_t> process) {
    return std::uint64_t{static_cast<std::uint32_t>(process.value_or(0))} << 32U | window;
}

} // namespace

std::optional<RunningApplication> DesktopWorkspace::frontmostApplication() {
    postedKeys.aim(std::nullopt);
    front = activeWindow(x);
    if (front == XCB_NONE)
        return std::nullopt;
    focus = focusedWindow(x);
    auto process = claimedProcessOf(x, front);
    return RunningApplication{identifierOf(front, process), nameOf(front, process)};
}

void DesktopWorkspace::activate(const RunningApplication& application) {
    auto window = static_cast<xcb_window_t>(application.identifier);
    const bool isThere =
        x.reply(xcb_get_window_attributes_reply, xcb_get_window_attributes(x, window)) != nullptr
        && identifierOf(window, claimedProcessOf(x, window)) == application.identifier;
    // What is meant for an application that has ended is for nobody.
    postedKeys.aim(isThere ? window : xcb_window_t{XCB_NONE});
    if (isThere && activeWindow(x) != window)
        bringToFront(x, window, window == front ? focus : std::nullopt);
}

std::optional<std::string> DesktopWorkspace::nameOf(xcb_window_t window, std::optional<pid_t> process) {
    auto windowClass = windowClassOf(x, window);
    if (auto name = names.nameOf(std::array{windowClass.name, windowClass.instance}))
        return name;
    if (!windowClass.name.empty())
        return windowClass.name;
    return process ? programOf(*process) : std::nullopt;
}

} // namespace platform::desktop
