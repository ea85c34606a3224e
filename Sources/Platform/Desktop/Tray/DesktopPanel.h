#pragma once

#include <functional>
#include <optional>

#include <QColor>
#include <QRect>

namespace platform::desktop {

// What the session's display tells of its panel, apart from the message bus. Places are as Qt counts. Main
// thread.
class DesktopPanel {
public:
    virtual ~DesktopPanel() = default;

    // Called after a tray of the display's came or went.
    std::function<void()> onChange;

    // Whether the display itself has a tray, to which programs give windows of theirs.
    virtual bool hasTray() const = 0;

    // What that tray wants icons drawn in, if it says so.
    virtual std::optional<QColor> trayColor() const = 0;

    // The end of the panel where icons stand; empty if no part of a monitor is kept free of windows. The
    // primary monitor goes before others, and of a monitor's panels the one at the top.
    virtual QRect end() const = 0;

    // Whether a window may now take the keyboard and the mouse for itself alone. Not while another has
    // either: a menu, or a program that was told to watch for a key, until that is released.
    virtual bool isInputFree() const = 0;
};

} // namespace platform::desktop
