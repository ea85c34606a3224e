#include "Desktop/Windows.h"

#include "Platform/Desktop/X11/Server/ActiveWindow.h"
#include "Platform/Desktop/X11/Server/WindowClass.h"
#include "Support/ComesTrue.h"

namespace platform::desktop {

xcb_window_t frontWindow(const XConnection& x) {
    auto tree = x.reply(xcb_query_tree_reply, xcb_query_tree(x, x.root()));
    const auto* windows = xcb_query_tree_children(tree.get());
    for (int index = xcb_query_tree_children_length(tree.get()) - 1; index >= 0; --index) {
        auto attributes =
            x.reply(xcb_get_window_attributes_reply, xcb_get_window_attributes(x, windows[index]));
        if (attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE)
            return windows[index];
    }
    return XCB_NONE;
}

void sendMessage(const XConnection& x, xcb_window_t receiver, xcb_window_t window, const std::string& type,
                 std::uint32_t first, std::uint32_t second) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = x.atom(type);
    message.data.data32[0] = first;
    message.data.data32[1] = second;
    // Those who look after the root window; every window takes what comes without a mask.
    const std::uint32_t mask =
        receiver == x.root() ? XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY : 0U;
    xcb_send_event(x, 0, receiver, mask, reinterpret_cast<const char*>(&message));
    x.flush();
}

bool isPill(const XConnection& x, xcb_window_t window) {
    return windowClassOf(x, window).name == "Lumarin";
}

bool becomeFullScreen(const XConnection& x, xcb_window_t window) {
    sendMessage(x, x.root(), window, "_NET_WM_STATE", 1, x.atom("_NET_WM_STATE_FULLSCREEN"));
    return tests::comesTrue([&] {
        auto size = x.reply(xcb_get_geometry_reply, xcb_get_geometry(x, window));
        return size && size->width == x.screen().width_in_pixels
               && size->height == x.screen().height_in_pixels;
    });
}

} // namespace platform::desktop
