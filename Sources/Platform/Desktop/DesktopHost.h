#pragma once

#include "Platform/Desktop/Instance/SingleInstance.h"
#include "Platform/Desktop/QtArguments.h"
#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Desktop/Session/DesktopLoginItem.h"
#include "Platform/Desktop/Session/DesktopNotifications.h"
#include "Platform/Desktop/Session/SignalWatch.h"
#include "Platform/Desktop/Windows/DesktopAccessibility.h"
#include "Platform/Desktop/Windows/DesktopAlerts.h"
#include "Platform/Foundation/LogSink.h"
#include "Platform/Foundation/ThreadRunLoop.h"
#include "Platform/Host.h"

#include <csignal>
#include <thread>

class QApplication;
class QSocketNotifier;

namespace platform::desktop {

// What a Linux desktop gives a program whatever kind of session it is: Qt's event loop and windows, folders,
// alerts, autostart, the network. Made on the main thread.
class DesktopHost : public Host {
public:
    ~DesktopHost() override;

    // Leaves the session as it was found and ends the program, with status 0. What is under way just ends
    // with it: tasks wait, on threads of their own too, for what could not be dropped in any order.
    [[noreturn]] void exit();

    Application& application() override { return app; }
    Alerts& alerts() override { return alertWindows; }
    UserNotifications& userNotifications() override { return notices; }
    Accessibility& accessibility() override { return needs; }
    void runEventLoop() override;
    void endEventLoop() override;
    void activate() override;
    RunLoop& mainRunLoop() override { return *runLoop; }
    Executor& backgroundExecutor() override { return background; }
    bool isProcessTrusted() override { return trustObstacle() == nullptr; }
    bool promptForTrust() override;
    LoginItem& loginItem() override { return autostart; }
    SystemFacts systemFacts() override;
    const Directories& directories() override { return folders; }
    const Bundle& mainBundle() override { return bundle; }
    UserDefaults& userDefaults() override { return defaults; }
    NotificationCenter& notificationCenter() override { return notifications; }
    std::vector<std::string> preferredLanguages() override;
    std::shared_ptr<HTTPSession> makeHTTPSession(HTTPSessionConfiguration configuration) override;

protected:
    // `program` is the name the program was started by; it and the place outlive the host.
    DesktopHost(char* program, const SingleInstance& place, LogSink sink);

    // What keeps this process from watching and typing keys: the key of the host's text about it. Null if
    // nothing does.
    virtual const char* trustObstacle() = 0;
    // Gives a window that is shown the keyboard, before all others.
    virtual void bringForward(QWindow& window) = 0;
    // Once the program is launched, for what can wait until then.
    virtual void prepareRest() {}
    // Does what another start of the program asked for; false if it is nothing that this kind of session
    // knows.
    virtual bool performCall(const std::string& /*command*/) { return false; }
    // Gives back what the session lent; everything of the program has stopped.
    virtual void leaveSession() = 0;

    // What the menus' commands ask for.
    void perform(const std::string& command);

private:
    void startBackground();
    void heedCalls();
    void reopen();

    // First: no thread may be there before them.
    SignalWatch terminations{SIGTERM, SIGINT, SIGHUP};
    QtArguments arguments;
    std::unique_ptr<QApplication> qt;

protected:
    const LogSink log;
    const std::unique_ptr<QtRunLoop> runLoop;
    const Directories folders;
    const Bundle bundle;

private:
    const SingleInstance& instance;
    std::unique_ptr<QSocketNotifier> calls;
    Application app;
    const HostTexts texts{bundle, app};
    DesktopAlerts alertWindows{[this](QWindow& window) { bringForward(window); }, texts, bundle};
    DesktopNotifications notices{QDBusConnection::sessionBus(), bundle};
    DesktopAccessibility needs{QDBusConnection::sessionBus()};
    DesktopLoginItem autostart;
    UserDefaults defaults;
    NotificationCenter notifications;
    ThreadRunLoop background;
    std::thread backgroundThread;
};

} // namespace platform::desktop
