#pragma once

#include "Platform/Kit/Window.h"

namespace platform {

// A window beside the work a person does in others. Main thread.
class Panel : public Window {
public:
    using Window::Window;

    // A floating panel stays in front of ordinary windows.
    bool isFloatingPanel() const { return level == WindowLevel::floating; }
    void setFloatingPanel(bool isFloating) {
        level = isFloating ? WindowLevel::floating : WindowLevel::normal;
    }
};

} // namespace platform
