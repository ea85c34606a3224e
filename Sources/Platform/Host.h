#pragma once

#include "Platform/Accessibility.h"
#include "Platform/Foundation/Bundle.h"
#include "Platform/Foundation/Directories.h"
#include "Platform/Foundation/HTTPSession.h"
#include "Platform/Foundation/NotificationCenter.h"
#include "Platform/Foundation/RunLoop.h"
#include "Platform/Foundation/UserDefaults.h"
#include "Platform/Input/Keyboard.h"
#include "Platform/Input/Pasteboard.h"
#include "Platform/Input/Workspace.h"
#include "Platform/Kit/Alert.h"
#include "Platform/Kit/Application.h"
#include "Platform/Kit/StatusItem.h"
#include "Platform/Kit/WindowServer.h"
#include "Platform/LoginItem.h"
#include "Platform/SystemFacts.h"
#include "Platform/UserNotifications.h"

#include <memory>
#include <string>
#include <vector>

namespace platform {

// All that the program asks of its machine. The host outlives everything of the program; what it hands out by
// reference lives as long as itself.
class Host {
public:
    // The host the program runs on. Set once, before anything of the program exists.
    static Host& current();
    static void setCurrent(Host* host);

    virtual ~Host() = default;

    virtual Application& application() = 0;
    virtual StatusBar& statusBar() = 0;
    virtual WindowServer& windowServer() = 0;
    virtual Alerts& alerts() = 0;
    virtual UserNotifications& userNotifications() = 0;
    virtual Accessibility& accessibility() = 0;

    // Works on the main run loop until `endEventLoop` is called.
    virtual void runEventLoop() = 0;
    virtual void endEventLoop() = 0;
    // Windows shown from now on come before those of other applications, and those that are shown come there.
    virtual void activate() = 0;
    virtual RunLoop& mainRunLoop() = 0;
    virtual Executor& backgroundExecutor() = 0;

    virtual Keyboard& keyboard() = 0;
    virtual Pasteboard& generalPasteboard() = 0;
    virtual Workspace& workspace() = 0;

    // Whether this process may watch and post keys.
    virtual bool isProcessTrusted() = 0;
    // The same, and where it may not, the person is told what is missing and how to get it. Returns at once.
    virtual bool promptForTrust() = 0;

    virtual LoginItem& loginItem() = 0;
    virtual SystemFacts systemFacts() = 0;

    virtual const Directories& directories() = 0;
    virtual const Bundle& mainBundle() = 0;
    virtual UserDefaults& userDefaults() = 0;
    virtual NotificationCenter& notificationCenter() = 0;

    // Language tags, the most preferred first: "zh-Hans-CN", "en-US".
    virtual std::vector<std::string> preferredLanguages() = 0;

    virtual std::shared_ptr<HTTPSession> makeHTTPSession(HTTPSessionConfiguration configuration) = 0;
};

} // namespace platform
