#pragma once

#include "Platform/Headless/FocusedField.h"
#include "Platform/Headless/HeadlessAccessibility.h"
#include "Platform/Headless/HeadlessAlerts.h"
#include "Platform/Headless/HeadlessKeyboard.h"
#include "Platform/Headless/HeadlessLoginItem.h"
#include "Platform/Headless/HeadlessNotifications.h"
#include "Platform/Headless/HeadlessPasteboard.h"
#include "Platform/Headless/HeadlessStatusBar.h"
#include "Platform/Headless/HeadlessWindowServer.h"
#include "Platform/Headless/HeadlessWorkspace.h"
#include "Platform/Headless/ManualRunLoop.h"
#include "Platform/Headless/ScriptedHTTP.h"
#include "Platform/Host.h"

namespace platform::headless {

// A machine in memory, on one thread and a clock that only `advance` moves. Its files are real: they stand in
// a folder of the test's.
class HeadlessHost : public Host {
public:
    // The user's folders are made below `root`; the resources are taken from where they are.
    HeadlessHost(const std::filesystem::path& root, const std::filesystem::path& resources);
    // Lets everything under way come to its end.
    ~HeadlessHost() override;

    void advance(Duration duration) { clock.advance(duration); }

    // Before the clock, whose waiting work may hold the last of a window.
    HeadlessWindowServer windows;
    ManualRunLoop clock;
    HeadlessPasteboard pasteboard;
    FocusedField field{clock, pasteboard};
    HeadlessKeyboard keys{field};
    HeadlessWorkspace applications;
    bool isRunning = false;
    int activations = 0;
    int trustPrompts = 0;
    HeadlessStatusBar bar;
    HeadlessAlerts alertsShown;
    HeadlessNotifications notices;
    HeadlessAccessibility needs;
    HeadlessLoginItem login;
    SystemFacts facts{"Version 14.5 (Build 23F79)", "Mac14,2"};
    ScriptedHTTP network{clock};
    std::vector<std::string> languages{"en-US"};
    // Makes the sessions; those of `network` if it is empty.
    std::function<std::shared_ptr<HTTPSession>(const HTTPSessionConfiguration&)> sessionMaker;

    Application& application() override { return app; }
    StatusBar& statusBar() override { return bar; }
    WindowServer& windowServer() override { return windows; }
    Alerts& alerts() override { return alertsShown; }
    UserNotifications& userNotifications() override { return notices; }
    Accessibility& accessibility() override { return needs; }
    // The test is the event loop: it advances the clock.
    void runEventLoop() override { isRunning = true; }
    void endEventLoop() override { isRunning = false; }
    void activate() override { ++activations; }
    RunLoop& mainRunLoop() override { return clock; }
    Executor& backgroundExecutor() override { return background; }
    Keyboard& keyboard() override { return keys; }
    Pasteboard& generalPasteboard() override { return pasteboard; }
    Workspace& workspace() override { return applications; }
    bool isProcessTrusted() override { return keys.isPermitted; }
    bool promptForTrust() override {
        ++trustPrompts;
        return keys.isPermitted;
    }
    LoginItem& loginItem() override { return login; }
    SystemFacts systemFacts() override { return facts; }
    const Directories& directories() override { return folders; }
    const Bundle& mainBundle() override { return bundle; }
    UserDefaults& userDefaults() override { return defaults; }
    NotificationCenter& notificationCenter() override { return notifications; }
    std::vector<std::string> preferredLanguages() override { return languages; }
    std::shared_ptr<HTTPSession> makeHTTPSession(HTTPSessionConfiguration configuration) override;

private:
    // Another executor than the main one, on the same thread: to go there and back takes a turn of the loop
    // each.
    class Background : public Executor {
    public:
        explicit Background(ManualRunLoop& loop) : runLoop(loop) {}
        void post(std::function<void()> work) override { runLoop.post(std::move(work)); }
        void postAfter(Duration delay, std::function<void()> work) override {
            runLoop.postAfter(delay, std::move(work));
        }

    private:
        ManualRunLoop& runLoop;
    };

    Application app;
    Background background{clock};
    const Directories folders;
    const Bundle bundle;
    UserDefaults defaults;
    NotificationCenter notifications;
};

} // namespace platform::headless
