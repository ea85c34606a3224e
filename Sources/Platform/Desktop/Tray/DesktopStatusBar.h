#pragma once

#include "Platform/Desktop/Tray/DesktopStatusItem.h"

namespace platform::desktop {

// The desktop's tray. Main thread.
class DesktopStatusBar : public StatusBar {
public:
    // The drawings are the bundle's, Symbols/<name>.svg; `command` is told the commands chosen in menus.
    DesktopStatusBar(DesktopPanel& desktopPanel, const Bundle& drawings, NativeMenu::Command command)
        : panel(desktopPanel), bundle(drawings), perform(std::move(command)) {}

    std::unique_ptr<StatusItem> makeStatusItem() override {
        return std::make_unique<DesktopStatusItem>(panel, bundle, perform);
    }

private:
    DesktopPanel& panel;
    const Bundle& bundle;
    const NativeMenu::Command perform;
};

} // namespace platform::desktop
