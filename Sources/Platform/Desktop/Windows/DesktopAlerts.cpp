#include "Platform/Desktop/Windows/DesktopAlerts.h"

#include "Platform/Desktop/Windows/ApplicationIcon.h"
#include "Platform/Desktop/Windows/DesktopProgressWindow.h"

#include <algorithm>

#include <QEventLoop>
#include <QWindow>

namespace platform::desktop {

namespace {

constexpr const char* agreement = "alert.ok";

} // namespace

std::size_t DesktopAlerts::runModal(const Alert& alert) {
    AlertWindow window(alert, texts.text(agreement));
    // The one below is returned from after this one. A modal window would keep the status item from clicks.
    if (!asking.empty())
        asking.back()->setEnabled(false);
    asking.push_back(&window);
    QEventLoop untilAnswered;
    QObject::connect(&window, &QDialog::finished, &untilAnswered, &QEventLoop::quit);
    showInFront(window);
    untilAnswered.exec();
    asking.pop_back();
    if (!asking.empty()) {
        asking.back()->setEnabled(true);
        showInFront(*asking.back());
    }
    return window.choice();
}

std::unique_ptr<ProgressWindow> DesktopAlerts::showProgress(const Alert& alert,
                                                            std::function<void()> onCancel) {
    auto window =
        std::make_unique<DesktopProgressWindow>(alert, texts.text("progress.cancel"), std::move(onCancel));
    showInFront(window->widget());
    return window;
}

void DesktopAlerts::tell(const Alert& alert) {
    std::erase_if(telling, [](const auto& closed) { return !closed; });
    const auto open = std::ranges::find_if(telling, [&](const auto& window) { return window->says(alert); });
    auto* window = open != telling.end() ? open->get() : new AlertWindow(alert, texts.text(agreement));
    if (open == telling.end()) {
        window->setAttribute(Qt::WA_DeleteOnClose);
        telling.emplace_back(window);
    }
    showInFront(*window);
}

void DesktopAlerts::showInFront(QWidget& window) {
    window.setWindowIcon(applicationIcon(bundle));
    window.show();
    bringToFront(*window.windowHandle());
}

} // namespace platform::desktop
