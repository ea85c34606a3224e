#include "Platform/Desktop/Compositor.h"

#include <QGuiApplication>
#include <xcb/xfixes.h>

namespace platform::desktop {
namespace {

int screenNumber(const XConnection& x) {
    int number = 0;
    for (auto screens = xcb_setup_roots_iterator(xcb_get_setup(x)); screens.data->root != x.root();
         xcb_screen_next(&screens))
        ++number;
    return number;
}

} // namespace

Compositor::Compositor(const XConnection& display, std::function<void()> changed)
    : x(display),
      report(std::move(changed)),
      selection(x.atom("_NET_WM_CM_S" + std::to_string(screenNumber(x)))) {
    const auto* application = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    const auto* extension = xcb_get_extension_data(x, &xcb_xfixes_id);
    if (!application || !extension || !extension->present)
        return;
    selectionEvent = extension->first_event + XCB_XFIXES_SELECTION_NOTIFY;
    // Qt has read these events already when others look for them.
    xcb_xfixes_select_selection_input(application->connection(), x.root(), selection,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER
                                          | XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY
                                          | XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    xcb_flush(application->connection());
    qGuiApp->installNativeEventFilter(this);
}

Backdrop Compositor::backdrop() const {
    auto owner = x.reply(xcb_get_selection_owner_reply, xcb_get_selection_owner(x, selection));
    if (!owner || owner->owner == XCB_NONE)
        return Backdrop::none;
    // Whoever blurs behind the windows that wish it says so.
    return x.property(x.root(), x.atom("_KDE_NET_WM_BLUR_BEHIND_REGION")) ? Backdrop::blurred
                                                                          : Backdrop::plain;
}

bool Compositor::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (eventType != "xcb_generic_event_t")
        return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & 0x7F) == selectionEvent
        && reinterpret_cast<const xcb_xfixes_selection_notify_event_t*>(event)->selection == selection)
        report();
    return false;
}

} // namespace platform::desktop
