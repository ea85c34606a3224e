#pragma once

#include "Platform/Desktop/X11/Server/XConnection.h"

#include <set>

#include <QSocketNotifier>

namespace platform::desktop {

class WindowSurface;

// Raises surfaces when another window may have come before one of them. Asks for the news on a connection of
// its own, so that nobody else's share of it changes. Main thread.
class StackingWatch {
public:
    // The surfaces are made on `watched`.
    explicit StackingWatch(const XConnection& watched);

    // Listens only while there are surfaces: every window that opens or moves is an event. Each time it
    // begins anew it raises them so many times at most: where another program insists on the front too, it
    // gets it.
    void add(const WindowSurface& surface);
    void remove(const WindowSurface& surface);

private:
    void listen(bool isListening);
    void readEvents();
    bool isOwn(xcb_window_t window) const;

    static constexpr int most = 20;

    const XConnection& ours;
    const XConnection x;
    QSocketNotifier events;
    std::set<const WindowSurface*> surfaces;
    // How many times they may still be raised.
    int left = 0;
};

} // namespace platform::desktop
