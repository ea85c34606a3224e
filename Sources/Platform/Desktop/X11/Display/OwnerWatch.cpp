#include "Platform/Desktop/X11/Display/OwnerWatch.h"

#include <QGuiApplication>
#include <xcb/xfixes.h>

namespace platform::desktop {

OwnerWatch::OwnerWatch(const XConnection& display, const std::string& kind, std::function<void()> changed)
    : x(display),
      selection(x.atom(kind + "_S" + std::to_string(x.screenNumber()))),
      report(std::move(changed)) {
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

xcb_window_t OwnerWatch::owner() const {
    const auto answer = x.reply(xcb_get_selection_owner_reply, xcb_get_selection_owner(x, selection));
    return answer ? answer->owner : xcb_window_t{XCB_NONE};
}

bool OwnerWatch::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (eventType != "xcb_generic_event_t")
        return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & 0x7F) == selectionEvent
        && reinterpret_cast<const xcb_xfixes_selection_notify_event_t*>(event)->selection == selection)
        report();
    return false;
}

} // namespace platform::desktop
