#include "Platform/Desktop/X11/Server/ActiveWindow.h"

#include <algorithm>
#include <array>
#include <cstring>

#include <climits>
#include <unistd.h>

namespace platform::desktop {

namespace {

// Applications put their properties on a window of their own, which a window manager may have put into
// another.
xcb_window_t topLevelAround(const XConnection& x, xcb_window_t window) {
    xcb_window_t topLevel = XCB_NONE;
    while (window != XCB_NONE && window != x.root()) {
        topLevel = window;
        if (x.property(window, XCB_ATOM_WM_CLASS))
            return window;
        auto tree = x.reply(xcb_query_tree_reply, xcb_query_tree(x, window));
        window = tree ? tree->parent : XCB_NONE;
    }
    return topLevel;
}

// Whether a window manager is there that says which window is active, and changes that when asked. What one
// that is gone has left behind counts for nothing.
bool isManaged(const XConnection& x) {
    constexpr const char* sign = "_NET_SUPPORTING_WM_CHECK";
    const auto manager = x.propertyValue(x.root(), sign);
    if (!manager || x.propertyValue(*manager, sign) != manager)
        return false;
    const auto supported = x.property(x.root(), x.atom("_NET_SUPPORTED"));
    return supported && std::ranges::count(supported->values(), x.atom("_NET_ACTIVE_WINDOW")) != 0;
}

std::string untilZero(const std::string& bytes) {
    return bytes.substr(0, bytes.find('\0'));
}

std::string ownMachine() {
    std::string name(HOST_NAME_MAX + 1, '\0');
    if (gethostname(name.data(), name.size()) != 0)
        return {};
    return untilZero(name);
}

} // namespace

xcb_window_t activeWindow(const XConnection& x) {
    auto active = x.propertyValue(x.root(), "_NET_ACTIVE_WINDOW");
    if (active && *active != XCB_NONE && isManaged(x))
        return *active;
    auto focus = x.reply(xcb_get_input_focus_reply, xcb_get_input_focus(x));
    if (!focus || focus->focus == XCB_INPUT_FOCUS_NONE)
        return XCB_NONE;
    if (focus->focus != XCB_INPUT_FOCUS_POINTER_ROOT && focus->focus != x.root())
        return topLevelAround(x, focus->focus);
    auto pointer = x.reply(xcb_query_pointer_reply, xcb_query_pointer(x, x.root()));
    return pointer ? pointer->child : xcb_window_t{XCB_NONE};
}

std::optional<xcb_window_t> focusedWindow(const XConnection& x) {
    auto focus = x.reply(xcb_get_input_focus_reply, xcb_get_input_focus(x));
    if (!focus || focus->focus == XCB_INPUT_FOCUS_NONE || focus->focus == XCB_INPUT_FOCUS_POINTER_ROOT)
        return std::nullopt;
    return focus->focus;
}

void bringToFront(const XConnection& x, xcb_window_t window, std::optional<xcb_window_t> focus) {
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
    if (isManaged(x))
        return;
    constexpr std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(x, window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    for (const auto target : {focus.value_or(window), window})
        if (x.errorOf(xcb_set_input_focus_checked(x, XCB_INPUT_FOCUS_POINTER_ROOT, target, XCB_CURRENT_TIME))
            == 0)
            return;
}

std::optional<pid_t> claimedProcessOf(const XConnection& x, xcb_window_t window) {
    auto process = x.propertyValue(window, "_NET_WM_PID");
    if (!process)
        return std::nullopt;
    auto machine = x.property(window, XCB_ATOM_WM_CLIENT_MACHINE);
    if (machine && untilZero(machine->bytes) != ownMachine())
        return std::nullopt;
    return static_cast<pid_t>(*process);
}

} // namespace platform::desktop
