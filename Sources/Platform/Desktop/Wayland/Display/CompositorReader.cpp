#include "Platform/Desktop/Wayland/Display/CompositorReader.h"

#include <QAbstractEventDispatcher>

namespace platform::desktop {

CompositorReader::CompositorReader(const WaylandConnection& unread)
    : wayland(unread), arrivals(wayland.descriptor(), QSocketNotifier::Read) {
    QObject::connect(&arrivals, &QSocketNotifier::activated, [this] { read(); });
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, &arrivals,
                     [this] { wayland.flush(); });
}

void CompositorReader::read() {
    wayland.dispatch();
    if (wayland.isBroken())
        endForLostCompositor();
}

} // namespace platform::desktop
