#pragma once

#include "Platform/Desktop/Session/HostTexts.h"
#include "Platform/Desktop/Windows/AlertWindow.h"

#include <QPointer>

namespace platform::desktop {

// Alerts and windows of progress that come to the front as they open. Of several alerts, only the latest one
// can be answered. Main thread.
class DesktopAlerts : public Alerts {
public:
    // Gives a window that is shown the keyboard, before all others.
    using BringForward = std::function<void(QWindow&)>;

    DesktopAlerts(BringForward bringForward, const HostTexts& hostTexts, const Bundle& drawings)
        : bringToFront(std::move(bringForward)), texts(hostTexts), bundle(drawings) {}

    // Returns also when the event loop of the program is ended.
    std::size_t runModal(const Alert& alert) override;
    std::unique_ptr<ProgressWindow> showProgress(const Alert& alert, std::function<void()> onCancel) override;

    // Shows the alert and returns at once; one that says the same and is still open only comes to the front.
    void tell(const Alert& alert);

private:
    void showInFront(QWidget& window);

    const BringForward bringToFront;
    const HostTexts& texts;
    const Bundle& bundle;
    std::vector<AlertWindow*> asking;
    std::vector<QPointer<AlertWindow>> telling;
};

} // namespace platform::desktop
