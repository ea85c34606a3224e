#pragma once

#include "Platform/Desktop/Tray/DesktopPanel.h"
#include "Platform/Desktop/X11/Display/OwnerWatch.h"

namespace platform::desktop {

// The panel of an X display. Main thread.
class X11Panel : public DesktopPanel {
public:
    explicit X11Panel(const XConnection& display);

    bool hasTray() const override { return tray.owner() != XCB_NONE; }
    std::optional<QColor> trayColor() const override;
    QRect end() const override;
    bool isInputFree() const override;

private:
    const XConnection& x;
    const OwnerWatch tray;
};

} // namespace platform::desktop
