#pragma once

#include "Platform/Desktop/Session/HostTexts.h"
#include "Platform/Desktop/Windows/AlertWindow.h"
#include "Platform/Desktop/X11/Server/XConnection.h"

#include <QPointer>

namespace platform::desktop {

// Alerts and windows of progress that come to the front as they open. Of several alerts, only the latest one
// can be answered. Main thread.
class DesktopAlerts : public Alerts {
public:
    DesktopAlerts(const XConnection& display, const HostTexts& hostTexts, const Bundle& drawings)
        : x(display), texts(hostTexts), bundle(drawings) {}

    // Returns also when the event loop of the program is ended.
    std::size_t runModal(const Alert& alert) override;
    std::unique_ptr<ProgressWindow> showProgress(const Alert& alert, std::function<void()> onCancel) override;

    // Shows the alert and returns at once; while one that was shown so is open, that one comes to the front.
    void tell(const Alert& alert);

private:
    void showInFront(QWidget& window);

    const XConnection& x;
    const HostTexts& texts;
    const Bundle& bundle;
    std::vector<AlertWindow*> asking;
    QPointer<AlertWindow> telling;
};

} // namespace platform::desktop
