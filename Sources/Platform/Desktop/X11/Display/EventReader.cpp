#include "Platform/Desktop/X11/Display/EventDrain.h"

#include <QAbstractEventDispatcher>

namespace platform::desktop {

EventDrain::EventDrain(const XConnection& undrained)
    : x(undrained), arrivals(xcb_get_file_descriptor(x), QSocketNotifier::Read) {
    QObject::connect(&arrivals, &QSocketNotifier::activated, [this] { drain(); });
    // What was read along with an answer does not arrive any more.
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, &arrivals,
                     [this] { drain(); });
}

void EventDrain::drain() {
    while (const XOwned<xcb_generic_event_t> event{xcb_poll_for_event(x)}) {
    }
    // A display that is gone could be read from for ever.
    if (xcb_connection_has_error(x))
        arrivals.setEnabled(false);
}

} // namespace platform::desktop
