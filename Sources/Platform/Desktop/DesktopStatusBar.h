#pragma once

#include "Platform/Foundation/Bundle.h"
#include "Platform/Kit/StatusItem.h"

namespace platform::desktop {

// The desktop's tray. An item waits for a tray to appear where there is none yet. Main thread.
class DesktopStatusBar : public StatusBar {
public:
    // The drawings are the bundle's, Symbols/<name>.svg.
    explicit DesktopStatusBar(const Bundle& drawings) : bundle(drawings) {}

    std::unique_ptr<StatusItem> makeStatusItem() override;

private:
    const Bundle& bundle;
};

} // namespace platform::desktop
