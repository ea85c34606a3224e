#include "Platform/Desktop/X11/Display/StackingWatch.h"

#include "Platform/Desktop/X11/Display/WindowSurface.h"

namespace platform::desktop {

StackingWatch::StackingWatch(const XConnection& watched)
    : ours(watched), events(xcb_get_file_descriptor(x), QSocketNotifier::Read) {
    QObject::connect(&events, &QSocketNotifier::activated, [this] { readEvents(); });
}

void StackingWatch::add(const WindowSurface& surface) {
    if (surfaces.empty())
        listen(true);
    surfaces.insert(&surface);
}

void StackingWatch::remove(const WindowSurface& surface) {
    surfaces.erase(&surface);
    if (surfaces.empty())
        listen(false);
}

void StackingWatch::listen(bool isListening) {
    left = most;
    const std::uint32_t mask = isListening ? XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY : XCB_EVENT_MASK_NO_EVENT;
    xcb_change_window_attributes(x, x.root(), XCB_CW_EVENT_MASK, &mask);
    x.flush();
}

void StackingWatch::readEvents() {
    bool isCovered = false;
    while (const XOwned<xcb_generic_event_t> event{xcb_poll_for_event(x)}) {
        if ((event->response_type & 0x7F) == XCB_CONFIGURE_NOTIFY) {
            const auto& configured = reinterpret_cast<const xcb_configure_notify_event_t&>(*event);
            isCovered |= isOwn(configured.above_sibling) && !isOwn(configured.window);
        } else if ((event->response_type & 0x7F) == XCB_MAP_NOTIFY) {
            isCovered |= !isOwn(reinterpret_cast<const xcb_map_notify_event_t&>(*event).window);
        }
    }
    // A display that is gone could be read from for ever.
    if (xcb_connection_has_error(x))
        events.setEnabled(false);
    if (isCovered && left > 0) {
        --left;
        for (const auto* surface : surfaces)
            surface->raise();
    }
}

bool StackingWatch::isOwn(xcb_window_t window) const {
    const auto* setup = xcb_get_setup(ours);
    return (window & ~setup->resource_id_mask) == setup->resource_id_base;
}

} // namespace platform::desktop
