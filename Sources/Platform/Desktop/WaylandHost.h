#pragma once

#include "Platform/Desktop/DesktopHost.h"
#include "Platform/Desktop/Hold/HoldCommands.h"
#include "Platform/Desktop/Tray/DesktopStatusBar.h"
#include "Platform/Desktop/Wayland/Clipboard/DataControlPasteboard.h"
#include "Platform/Desktop/Wayland/Display/WaylandDisplay.h"
#include "Platform/Desktop/Wayland/Keys/VirtualKeyboard.h"
#include "Platform/Desktop/Wayland/Keys/WaylandKeyboard.h"
#include "Platform/Desktop/WaylandPanel.h"
#include "Platform/Desktop/WaylandWorkspace.h"
#include "Platform/Desktop/Windows/DesktopWindowServer.h"

namespace platform::desktop {

// A Wayland session whose compositor has what the gesture needs. Made on the main thread. When the compositor
// goes away the program ends with a sentence on standard error and status 1.
class WaylandHost : public DesktopHost {
public:
    // Whether the session's compositor, if there is one, has it all.
    static bool isPossible();

    // Throws WaylandError. `program` is the name the program was started by; it and the place outlive the
    // host.
    WaylandHost(char* program, const SingleInstance& place, LogSink log);

    StatusBar& statusBar() override { return bar; }
    WindowServer& windowServer() override { return windows; }
    Keyboard& keyboard() override { return keys; }
    Pasteboard& generalPasteboard() override { return *pasteboard; }
    Workspace& workspace() override { return applications; }

protected:
    const char* trustObstacle() override { return nullptr; }
    void bringForward(QWindow& window) override;
    void prepareRest() override { applications.readNames(); }
    void leaveSession() override;
    bool performCall(const std::string& command) override { return commands.perform(command); }

private:
    HeldKey held{*runLoop};
    HoldCommands commands{held, *runLoop};
    PostedKeys postedKeys;
    CompositorThread keyThread;
    Toplevels toplevels{keyThread};
    VirtualKeyboard typist{keyThread};
    WaylandKeyboard keys{held, typist, toplevels, postedKeys};
    std::optional<DataControlPasteboard> pasteboard{std::in_place, postedKeys, log};
    WaylandDisplay display;
    DesktopWindowServer windows{display, *runLoop, bundle};
    WaylandWorkspace applications;
    WaylandPanel panel;
    DesktopStatusBar bar{panel, bundle, [this](const std::string& command) { perform(command); }};
};

} // namespace platform::desktop
