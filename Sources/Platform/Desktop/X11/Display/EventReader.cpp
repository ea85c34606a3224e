#include "Platform/Desktop/X11/Display/EventReader.h"

#include <QAbstractEventDispatcher>

namespace platform::desktop {

EventReader::EventReader(const XConnection& unread, Handler handler)
    : x(unread), handle(std::move(handler)), arrivals(xcb_get_file_descriptor(x), QSocketNotifier::Read) {
    QObject::connect(&arrivals, &QSocketNotifier::activated, [this] { read(); });
    // What was read along with an answer does not arrive any more.
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, &arrivals,
                     [this] { read(); });
}

void EventReader::read() {
    while (const XOwned<xcb_generic_event_t> event{xcb_poll_for_event(x)})
        if (handle)
            handle(*event);
    // A display that is gone could be read from for ever.
    if (xcb_connection_has_error(x))
        arrivals.setEnabled(false);
}

} // namespace platform::desktop
