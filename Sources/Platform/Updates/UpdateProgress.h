#pragma once

#include "Platform/Foundation/Executor.h"
#include "Platform/Kit/Alert.h"

namespace platform {

// A progress window that is shown once there has been something to wait for, for as long as this lives. Main
// thread.
class UpdateProgress {
public:
    UpdateProgress(Alert alert, Duration delay, std::function<void()> onCancel);

    // How much is done, from 0 to 1. Does nothing before the window is shown or once this is gone.
    std::function<void(double)> fractionSetter() const;

private:
    struct Shown {
        std::unique_ptr<ProgressWindow> window;
    };

    std::shared_ptr<Shown> shown = std::make_shared<Shown>();
};

} // namespace platform
