#pragma once

#include "Platform/Desktop/Tray/DesktopStatusItem.h"

namespace platform::desktop {

// The desktop's tray. Main thread.
class DesktopStatusBar : public StatusBar {
public:
    // The drawings are the bundle's, Symbols/<name>.svg; `command` is told the commands chosen in menus.
    DesktopStatusBar(const XConnection& display, const Bundle& drawings, NativeMenu::Command command)
        : x(display), bundle(drawings), perform(std::move(command)) {}

    std::unique_ptr<StatusItem> makeStatusItem() override {
        return std::make_unique<DesktopStatusItem>(x, bundle, perform);
    }

private:
    const XConnection& x;
    const Bundle& bundle;
    const NativeMenu::Command perform;
};

} // namespace platform::desktop
