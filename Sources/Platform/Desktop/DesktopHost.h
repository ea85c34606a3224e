#pragma once

#include "Platform/Desktop/DesktopAlerts.h"
#include "Platform/Desktop/DesktopKeyboard.h"
#include "Platform/Desktop/DesktopLoginItem.h"
#include "Platform/Desktop/DesktopPasteboard.h"
#include "Platform/Desktop/DesktopStatusBar.h"
#include "Platform/Desktop/DesktopWorkspace.h"
#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Desktop/TerminationSignals.h"
#include "Platform/Foundation/ThreadRunLoop.h"
#include "Platform/Host.h"

#include <thread>

class QApplication;

namespace platform::desktop {

class KeyboardNoticeFilter;

// A Linux desktop: Qt 6 and X11. Made and dropped on the main thread. When the display goes away the program
// ends with a sentence on standard error and status 1.
class DesktopHost : public Host {
public:
    // Throws DisplayError. The arguments are Qt's and outlive the host.
    DesktopHost(int& argumentCount, char** arguments);
    ~DesktopHost() override;

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
    Pasteboard& generalPasteboard() override { return pasteboard; }
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

    // First: no thread may be there before it.
    TerminationSignals signals;
    // Next: without a display Qt would end the program in its own way.
    XConnection display;
    std::unique_ptr<QApplication> qt;
    std::unique_ptr<KeyboardNoticeFilter> keyboardNotices;
    std::unique_ptr<QtRunLoop> runLoop;
    const Directories folders;
    const Bundle bundle;
    std::unique_ptr<WindowServer> windows;
    PostedKeys postedKeys;
    std::unique_ptr<DesktopKeyboard> keys;
    DesktopPasteboard pasteboard{postedKeys};
    DesktopWorkspace applications;
    Application app;
    const HostTexts texts{bundle, app};
    DesktopAlerts alertWindows{display, texts};
    DesktopStatusBar bar;
    DesktopLoginItem autostart;
    UserDefaults defaults;
    NotificationCenter notifications;
    ThreadRunLoop background;
    // Last: it uses what stands above.
    std::thread backgroundThread;
};

} // namespace platform::desktop
