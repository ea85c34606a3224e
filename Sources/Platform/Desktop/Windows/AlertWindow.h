#pragma once

#include "Platform/Kit/Alert.h"

#include <QMessageBox>

namespace platform::desktop {

// An alert as the desktop shows such things. It keeps no other window from being used. Main thread.
class AlertWindow : public QMessageBox {
public:
    // `agreement` is on the button of an alert that names none.
    AlertWindow(const Alert& alert, const std::string& agreement);

    bool says(const Alert& alert) const;

    // The place of the button that was chosen, the last one's when the window was closed.
    std::size_t choice() const;

private:
    std::vector<QAbstractButton*> choices;
};

} // namespace platform::desktop
