#include "Platform/Desktop/X11/Display/X11Display.h"

#include "Platform/Desktop/X11/Display/Monitors.h"
#include "Platform/Desktop/X11/Display/WindowSurface.h"

#include <xcb/randr.h>
#include <xcb/xfixes.h>

namespace platform::desktop {

X11Display::X11Display() {
    // The server refuses requests of a version that was not agreed on.
    x.reply(xcb_xfixes_query_version_reply, xcb_xfixes_query_version(x, 2, 0));
    hearOfMonitors();
}

std::vector<Monitor> X11Display::monitors() {
    return monitorsOf(x);
}

const Monitor& X11Display::mainMonitor(const std::vector<Monitor>& monitors) {
    return desktop::mainMonitor(x, monitors);
}

std::unique_ptr<Surface> X11Display::makeSurface(int margin) {
    return std::make_unique<WindowSurface>(x, stacking, margin);
}

void X11Display::hearOfMonitors() {
    // Monitors that were put together by hand are told of by the root window alone.
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(x, x.root(), XCB_CW_EVENT_MASK, &mask);
    if (const auto* extension = xcb_get_extension_data(x, &xcb_randr_id); extension && extension->present) {
        monitorEvents = extension->first_event;
        xcb_randr_select_input(x, x.root(),
                               XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE);
    }
    x.flush();
}

void X11Display::handle(const xcb_generic_event_t& event) {
    const auto type = event.response_type & 0x7F;
    if (type == XCB_CONFIGURE_NOTIFY
        || (monitorEvents != 0
            && (type == monitorEvents + XCB_RANDR_SCREEN_CHANGE_NOTIFY
                || type == monitorEvents + XCB_RANDR_NOTIFY)))
        reportChange();
}

void X11Display::reportChange() const {
    if (onChange)
        onChange();
}

} // namespace platform::desktop
