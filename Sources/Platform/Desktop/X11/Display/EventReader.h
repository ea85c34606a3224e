#pragma once

#include "Platform/Desktop/X11/Server/XConnection.h"

#include <functional>

#include <QSocketNotifier>

namespace platform::desktop {

// Reads what the server sends on a connection that is mostly asked things: each one hears, at the least, of
// changes of the keyboard's map and of requests that failed, which would pile up. Main thread, while Qt's
// application object lives.
class EventReader {
public:
    using Handler = std::function<void(const xcb_generic_event_t&)>;

    // Without a handler they are thrown away.
    explicit EventReader(const XConnection& x, Handler handler = nullptr);

private:
    void read();

    const XConnection& x;
    const Handler handle;
    QSocketNotifier arrivals;
};

} // namespace platform::desktop
