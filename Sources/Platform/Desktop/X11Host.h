#pragma once

#include "Platform/Desktop/DesktopHost.h"
#include "Platform/Desktop/DesktopWorkspace.h"
#include "Platform/Desktop/Tray/DesktopStatusBar.h"
#include "Platform/Desktop/Windows/DesktopWindowServer.h"
#include "Platform/Desktop/X11/Clipboard/DesktopPasteboard.h"
#include "Platform/Desktop/X11/Display/EventReader.h"
#include "Platform/Desktop/X11/Display/KeyboardNoticeFilter.h"
#include "Platform/Desktop/X11/Display/X11Display.h"
#include "Platform/Desktop/X11/Display/X11Panel.h"
#include "Platform/Desktop/X11/Keys/DesktopKeyboard.h"

namespace platform::desktop {

// The host's own connection, opened before anything of Qt's: without a display Qt would end the program in
// its own way.
struct HostConnection {
    const XConnection x;
};

// An X11 session. Made on the main thread. When the display goes away the program ends with a sentence on
// standard error and status 1.
class X11Host : private HostConnection, public DesktopHost {
public:
    // Throws DisplayError. `program` is the name the program was started by; it and the place outlive the
    // host.
    X11Host(char* program, const SingleInstance& place, LogSink log);

    StatusBar& statusBar() override { return bar; }
    WindowServer& windowServer() override { return windows; }
    Keyboard& keyboard() override { return *keys; }
    Pasteboard& generalPasteboard() override { return *pasteboard; }
    Workspace& workspace() override { return applications; }

protected:
    const char* trustObstacle() override;
    void bringForward(QWindow& window) override;
    void prepareRest() override { applications.readNames(); }
    void leaveSession() override;

private:
    const EventReader drain{x};
    KeyboardNoticeFilter keyboardNotices{x};
    X11Display display;
    DesktopWindowServer windows{display, *runLoop, bundle};
    PostedKeys postedKeys;
    std::optional<DesktopKeyboard> keys{std::in_place, x, *runLoop, postedKeys, log};
    std::optional<DesktopPasteboard> pasteboard{std::in_place, postedKeys, log};
    DesktopWorkspace applications;
    X11Panel panel{x};
    DesktopStatusBar bar{panel, bundle, [this](const std::string& command) { perform(command); }};
};

} // namespace platform::desktop
