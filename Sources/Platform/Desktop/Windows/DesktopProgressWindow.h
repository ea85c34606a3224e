#pragma once

#include "Platform/Kit/Alert.h"

class QDialog;
class QProgressBar;

namespace platform::desktop {

// A window that shows how far a piece of work is. Closing it is cancelling. Main thread.
class DesktopProgressWindow : public ProgressWindow {
public:
    // `cancelling` is on the button of an alert that names none.
    DesktopProgressWindow(const Alert& alert, const std::string& cancelling, std::function<void()> onCancel);
    ~DesktopProgressWindow() override;
    DesktopProgressWindow(const DesktopProgressWindow&) = delete;
    DesktopProgressWindow& operator=(const DesktopProgressWindow&) = delete;

    void setFraction(std::optional<double> fraction) final;

    QDialog& widget() { return *dialog; }

private:
    QDialog* const dialog;
    QProgressBar* const bar;
};

} // namespace platform::desktop
