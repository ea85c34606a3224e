#pragma once

#include "Platform/Kit/StatusItem.h"

#include <functional>
#include <memory>
#include <string>

namespace platform {

// What the program does when the application tells it something. Main thread.
class ApplicationDelegate {
public:
    virtual ~ApplicationDelegate() = default;

    virtual void applicationDidFinishLaunching() = 0;

    // It was started once more while it has no window open; possibly before it has finished launching.
    virtual void applicationDidReopen() = 0;

    // The program's icon in the status bar, null before there is one. Owned by the delegate.
    virtual StatusItem* statusItem() = 0;
};

// An accessory application has no icon among the running ones and no menu bar, but may show windows.
enum class ActivationPolicy { regular, accessory };

// The running program. Main thread.
class Application {
public:
    ActivationPolicy activationPolicy = ActivationPolicy::regular;
    // Not owned.
    std::weak_ptr<ApplicationDelegate> delegate;
    // Never shown by an accessory application. Its key equivalents are for windows in which text can be
    // edited or copied; a host whose windows bring these keys along needs it for nothing else.
    std::shared_ptr<Menu> mainMenu;
    // Gives the folder of the bundle's texts that are in use, "en"; the host's own texts go by it. Empty for
    // those of the system's language.
    std::function<std::string()> localization;

    // Tells the delegate when launching has finished, and returns when the event loop has ended. Once.
    void run();

    // Brings the program's windows to the front, whatever application is there.
    void activate();

    // Ends the event loop.
    void terminate();
};

} // namespace platform
