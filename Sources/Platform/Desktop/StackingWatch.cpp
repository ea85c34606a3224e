#include "Platform/Desktop/StackingWatch.h"

#include <QGuiApplication>

namespace platform::desktop {

StackingWatch::StackingWatch(const XConnection& display, std::function<void()> changed)
    : x(display), report(std::move(changed)) {
    qGuiApp->installNativeEventFilter(this);
}

void StackingWatch::setWatching(bool isWatching) {
    const auto* application = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (watching == isWatching || !application)
        return;
    watching = isWatching;
    // Qt has read these events already when others look for them; it listens to the root window itself.
    auto* connection = application->connection();
    const auto root = x.root();
    const XOwned<xcb_get_window_attributes_reply_t> listened(
        xcb_get_window_attributes_reply(connection, xcb_get_window_attributes(connection, root), nullptr));
    if (!listened)
        return;
    constexpr std::uint32_t news = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    const std::uint32_t mask =
        watching ? listened->your_event_mask | news : listened->your_event_mask & ~news;
    xcb_change_window_attributes(connection, root, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(connection);
}

bool StackingWatch::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (!watching || eventType != "xcb_generic_event_t")
        return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & 0x7F) != XCB_CONFIGURE_NOTIFY)
        return false;
    const auto* configured = reinterpret_cast<const xcb_configure_notify_event_t*>(event);
    if (configured->event == x.root() && !isOwn(configured->window))
        report();
    return false;
}

bool StackingWatch::isOwn(xcb_window_t window) const {
    const auto* setup = xcb_get_setup(x);
    return (window & ~setup->resource_id_mask) == setup->resource_id_base;
}

} // namespace platform::desktop
