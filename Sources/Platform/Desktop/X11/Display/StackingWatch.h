#pragma once

#include "Platform/Desktop/X11/Server/XConnection.h"

#include <functional>

#include <QSocketNotifier>

namespace platform::desktop {

// Tells when another window may have come before one of a connection's. Asks for the news on a connection of
// its own, so that nobody else's share of it changes. Main thread.
class StackingWatch {
public:
    StackingWatch(const XConnection& watched, std::function<void()> covered);

    // While it is of use: every window that opens or moves is an event. Each time it begins anew it reports
    // so many times at most: where another program insists on the front too, it gets it.
    void setWatching(bool isWatching);

private:
    void readEvents();
    bool isOwn(xcb_window_t window) const;

    static constexpr int most = 20;

    const XConnection& ours;
    const std::function<void()> report;
    const XConnection x;
    QSocketNotifier events;
    bool watching = false;
    // Reports.
    int left = 0;
};

} // namespace platform::desktop
