#pragma once

#include "Platform/Desktop/Tray/DesktopPanel.h"

namespace platform::desktop {

// A Wayland session's panel shows icons over the message bus alone, and tells nothing of itself.
class WaylandPanel : public DesktopPanel {
public:
    bool hasTray() const override { return false; }
    std::optional<QColor> trayColor() const override { return std::nullopt; }
    QRect end() const override { return {}; }
    bool isInputFree() const override { return true; }
};

} // namespace platform::desktop
