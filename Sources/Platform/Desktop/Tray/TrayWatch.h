#pragma once

#include "Platform/Desktop/X11/Display/OwnerWatch.h"

#include <QDBusServiceWatcher>
#include <QTimer>

namespace platform::desktop {

// Whether the desktop shows icons of programs, in a classic tray or in a panel that asks for them over D-Bus.
// Main thread.
class TrayWatch {
public:
    // `changed` is called after either came or went.
    TrayWatch(const XConnection& x, std::function<void()> changed);

    bool isThere() const;

    // The window of the classic tray, none if there is no such tray.
    xcb_window_t classicTray() const { return classic.owner(); }

private:
    // Started by whatever may be a change.
    QTimer report;
    OwnerWatch classic;
    QDBusServiceWatcher panels;
};

} // namespace platform::desktop
