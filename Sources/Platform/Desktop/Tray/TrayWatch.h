#pragma once

#include "Platform/Desktop/Tray/DesktopPanel.h"

#include <QDBusServiceWatcher>
#include <QTimer>

namespace platform::desktop {

// Whether the desktop shows icons of programs, in a tray of the display's or in a panel that asks for them
// over D-Bus. Main thread.
class TrayWatch {
public:
    // `changed` is called after either came or went; soon also for a panel that is there already.
    TrayWatch(DesktopPanel& panel, std::function<void()> changed);
    ~TrayWatch();
    TrayWatch(const TrayWatch&) = delete;
    TrayWatch& operator=(const TrayWatch&) = delete;

    bool isThere() const { return panel.hasTray() || hasHost; }

private:
    void askForHost();

    DesktopPanel& panel;
    // Started by whatever may be a change.
    QTimer report;
    QDBusServiceWatcher watchers;
    // Restarted rather than asked again for each of several changes at once.
    QTimer question;
    bool hasHost = false;
};

} // namespace platform::desktop
