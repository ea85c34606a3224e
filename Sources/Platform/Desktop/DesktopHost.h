#pragma once

#include "Platform/Desktop/DesktopWorkspace.h"
#include "Platform/Desktop/QtArguments.h"
#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Desktop/Session/DesktopLoginItem.h"
#include "Platform/Desktop/Session/SignalWatch.h"
#include "Platform/Desktop/Session/SingleInstance.h"
#include "Platform/Desktop/Tray/DesktopStatusBar.h"
#include "Platform/Desktop/Windows/DesktopAlerts.h"
#include "Platform/Desktop/X11/Clipboard/DesktopPasteboard.h"
#include "Platform/Desktop/X11/Display/EventDrain.h"
#include "Platform/Desktop/X11/Keys/DesktopKeyboard.h"
#include "Platform/Foundation/LogSink.h"
#include "Platform/Foundation/ThreadRunLoop.h"
#include "Platform/Host.h"

#include <csignal>
#include <thread>

class QApplication;

namespace platform::desktop {

class KeyboardNoticeFilter;

// A Linux desktop: Qt 6 and X11. Made on the main thread. When the display goes away the program ends with a
// sentence on standard error and status 1.
class DesktopHost : public Host {
public:
    // Throws DisplayError. `program` is the name the program was started by and outlives the host.
    DesktopHost(char* program, LogSink log);
    ~DesktopHost() override;

    // Leaves the session as it was found and ends the program, with status 0. What is under way just ends
    // with it: tasks wait, on threads of their own too, for what could not be dropped in any order.
    [[noreturn]] void exit();

    Application& application() override { return app; }
    StatusBar& statusBar() override { return bar; }
    WindowServer& windowServer() override { return *windows; }
    Alerts& alerts() override { return alertWindows; }
    void runEventLoop() override;
    void endEventLoop() override;
    void activate() override;
    RunLoop& mainRunLoop() override { return *runLoop; }
    Executor& backgroundExecutor() override { return background; }
    Keyboard& keyboard() override { return *keys; }
    Pasteboard& generalPasteboard() override { return *pasteboard; }
    Workspace& workspace() override { return applications; }
    bool isProcessTrusted() override;
    bool promptForTrust() override;
    LoginItem& loginItem() override { return autostart; }
    SystemFacts systemFacts() override;
    const Directories& directories() override { return folders; }
    const Bundle& mainBundle() override { return bundle; }
    UserDefaults& userDefaults() override { return defaults; }
    NotificationCenter& notificationCenter() override { return notifications; }
    std::vector<std::string> preferredLanguages() override;
    std::shared_ptr<HTTPSession> makeHTTPSession(HTTPSessionConfiguration configuration) override;

private:
    void startBackground();
    void reopen();

    const LogSink log;

    // First: no thread may be there before them.
    SignalWatch terminations{SIGTERM, SIGINT, SIGHUP};
    SignalWatch calls{SingleInstance::call};
    // Next: without a display Qt would end the program in its own way.
    XConnection display;
    QtArguments arguments;
    std::unique_ptr<QApplication> qt;
    const EventDrain drain{display};
    std::unique_ptr<KeyboardNoticeFilter> keyboardNotices;
    std::unique_ptr<QtRunLoop> runLoop;
    const Directories folders;
    const Bundle bundle;
    std::unique_ptr<WindowServer> windows;
    PostedKeys postedKeys;
    std::unique_ptr<DesktopKeyboard> keys;
    std::optional<DesktopPasteboard> pasteboard{std::in_place, postedKeys};
    DesktopWorkspace applications;
    Application app;
    const HostTexts texts{bundle, app};
    DesktopAlerts alertWindows{display, texts, bundle};
    DesktopStatusBar bar;
    DesktopLoginItem autostart;
    UserDefaults defaults;
    NotificationCenter notifications;
    ThreadRunLoop background;
    std::thread backgroundThread;
};

} // namespace platform::desktop
