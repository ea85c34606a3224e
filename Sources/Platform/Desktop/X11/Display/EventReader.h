#pragma once

#include "Platform/Desktop/X11/Server/XConnection.h"

#include <QSocketNotifier>

namespace platform::desktop {

// Throws away what the server sends on a connection that is only asked things: each one hears of changes of
// the keyboard's map, and of requests that failed. Main thread, while Qt's application object lives.
class EventDrain {
public:
    explicit EventDrain(const XConnection& x);

private:
    void drain();

    const XConnection& x;
    QSocketNotifier arrivals;
};

} // namespace platform::desktop
