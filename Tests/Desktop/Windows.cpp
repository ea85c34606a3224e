#include "Desktop/Windows.h"

#include "Desktop/DisplayProcess.h"
#include "Platform/Desktop/ActiveWindow.h"

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

bool isPill(const XConnection& x, xcb_window_t window) {
    return windowClassOf(x, window).name == "Lumarin";
}

bool becomeFullScreen(const XConnection& x, xcb_window_t window) {
    xcb_client_message_event_t wish{};
    wish.response_type = XCB_CLIENT_MESSAGE;
    wish.format = 32;
    wish.window = window;
    wish.type = x.atom("_NET_WM_STATE");
    wish.data.data32[0] = 1;
    wish.data.data32[1] = x.atom("_NET_WM_STATE_FULLSCREEN");
    xcb_send_event(x, 0, x.root(), XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&wish));
    x.flush();
    return tests::comesTrue([&] {
        auto size = x.reply(xcb_get_geometry_reply, xcb_get_geometry(x, window));
        return size && size->width == x.screen().width_in_pixels
               && size->height == x.screen().height_in_pixels;
    });
}

} // namespace platform::desktop
