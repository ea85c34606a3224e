#include "Platform/Desktop/X11/Server/InputGrabs.h"

namespace platform::desktop {

bool isInputFree(const XConnection& x) {
    constexpr auto async = XCB_GRAB_MODE_ASYNC;
    // What is typed or clicked meanwhile is kept back by the server and goes its way after the release.
    constexpr auto frozen = XCB_GRAB_MODE_SYNC;
    const auto keyboard =
        x.reply(xcb_grab_keyboard_reply, xcb_grab_keyboard(x, 0, x.root(), XCB_CURRENT_TIME, async, frozen));
    const auto pointer =
        x.reply(xcb_grab_pointer_reply,
                xcb_grab_pointer(x, 0, x.root(), 0, frozen, async, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME));
    xcb_ungrab_keyboard(x, XCB_CURRENT_TIME);
    // Answered when both are free for other connections, the toolkit's too.
    x.errorOf(xcb_ungrab_pointer_checked(x, XCB_CURRENT_TIME));
    return keyboard && keyboard->status == XCB_GRAB_STATUS_SUCCESS && pointer
           && pointer->status == XCB_GRAB_STATUS_SUCCESS;
}

} // namespace platform::desktop
