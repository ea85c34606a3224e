#pragma once

#include "Platform/Desktop/Applications/ApplicationNames.h"
#include "Platform/Desktop/Session/FileReveal.h"
#include "Platform/Desktop/Typing/PostedKeys.h"
#include "Platform/Desktop/X11/Server/XConnection.h"
#include "Platform/Input/Workspace.h"

namespace platform::desktop {

// The applications of an X11 session, each told by a window of its. Combinations that are typed after one was
// activated are for that one alone, until it is asked again which is in front.
class DesktopWorkspace : public Workspace {
public:
    DesktopWorkspace(const XConnection& display, ApplicationNames applicationNames, PostedKeys& keys)
        : x(display), names(std::move(applicationNames)), postedKeys(keys) {}

    // Names are known soon after this.
    void readNames() { names.read(); }

    std::optional<RunningApplication> frontmostApplication() override;
    void activate(const RunningApplication& application) override;
    void reveal(const std::filesystem::path& file) override { revealFile(file); }

private:
    std::optional<std::string> nameOf(xcb_window_t window, std::optional<pid_t> process);

    const XConnection& x;
    ApplicationNames names;
    PostedKeys& postedKeys;
    // The window last seen in front, and the one in it that had the keyboard.
    xcb_window_t front = XCB_NONE;
    std::optional<xcb_window_t> focus;
};

} // namespace platform::desktop
