#pragma once

#include "Platform/Kit/Menu.h"

#include <memory>

namespace platform {

// What the program does when the application tells it something. Main thread.
class ApplicationDelegate {
public:
    virtual ~ApplicationDelegate() = default;

    virtual void applicationDidFinishLaunching() = 0;
};

// An accessory application has no icon among the running ones and no menu bar, but may show windows.
enum class ActivationPolicy { regular, accessory };

// The running program. Main thread.
class Application {
public:
    ActivationPolicy activationPolicy = ActivationPolicy::regular;
    // Not owned.
    std::weak_ptr<ApplicationDelegate> delegate;
    // Never shown by an accessory application; its key equivalents work in the program's windows.
    std::shared_ptr<Menu> mainMenu;

    // Tells the delegate when launching has finished, and returns when the event loop has ended. Once.
    void run();

    // Ends the event loop.
    void terminate();
};

} // namespace platform
