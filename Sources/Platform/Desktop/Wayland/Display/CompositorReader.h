#pragma once

#include "Platform/Desktop/Wayland/Server/WaylandConnection.h"

#include <QSocketNotifier>

namespace platform::desktop {

// Reads what the compositor sends on a connection of the main thread's, and sends what was written to it.
// While Qt's application object lives.
class CompositorReader {
public:
    explicit CompositorReader(const WaylandConnection& wayland);

private:
    void read();

    const WaylandConnection& wayland;
    QSocketNotifier arrivals;
};

} // namespace platform::desktop
