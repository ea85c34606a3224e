#include "Platform/Desktop/DesktopWorkspace.h"

#include <array>
#include <cstring>

namespace platform::desktop {

namespace {

// A window of a process: the number of a window that is gone is given to another program's one day.
std::uint64_t identifierOf(xcb_window_t window, std::optional<pid_t> process) {
    return std::uint64_t{static_cast<std::uint32_t>(process.value_or(0))} << 32U | window;
}

} // namespace

std::optional<RunningApplication> DesktopWorkspace::frontmostApplication() {
    auto window = activeWindow(x);
    if (window == XCB_NONE)
        return std::nullopt;
    auto process = processOf(x, window);
    return RunningApplication{identifierOf(window, process), nameOf(window, process)};
}

void DesktopWorkspace::activate(const RunningApplication& application) {
    auto window = static_cast<xcb_window_t>(application.identifier);
    bool exists = x.reply(xcb_get_window_attributes_reply, xcb_get_window_attributes(x, window)) != nullptr;
    if (!exists || identifierOf(window, processOf(x, window)) != application.identifier
        || activeWindow(x) == window)
        return;
    xcb_client_message_event_t request{};
    request.response_type = XCB_CLIENT_MESSAGE;
    request.format = 32;
    request.window = window;
    request.type = x.atom("_NET_ACTIVE_WINDOW");
    // On behalf of the user, as a pager does it: window managers heed that at any time.
    constexpr std::uint32_t pager = 2;
    request.data.data32[0] = pager;
    request.data.data32[1] = XCB_CURRENT_TIME;
    std::array<char, 32> message{};
    std::memcpy(message.data(), &request, sizeof request);
    xcb_send_event(x, 0, x.root(), XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   message.data());
    x.flush();
}

std::optional<std::string> DesktopWorkspace::nameOf(xcb_window_t window, std::optional<pid_t> process) {
    auto windowClass = windowClassOf(x, window);
    if (auto name = names.nameOf(windowClass))
        return name;
    if (!windowClass.name.empty())
        return windowClass.name;
    return process ? programOf(*process) : std::nullopt;
}

} // namespace platform::desktop
