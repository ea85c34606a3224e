#pragma once

#include "Platform/Desktop/ApplicationNames.h"
#include "Platform/Desktop/FileReveal.h"
#include "Platform/Input/Workspace.h"

namespace platform::desktop {

// The applications of an X11 session, each told by a window of its.
class DesktopWorkspace : public Workspace {
public:
    DesktopWorkspace(const XConnection& display, ApplicationNames applicationNames)
        : x(display), names(std::move(applicationNames)) {}

    // Names are known soon after this.
    void readNames() { names.read(); }

    std::optional<RunningApplication> frontmostApplication() override;
    void activate(const RunningApplication& application) override;
    void reveal(const std::filesystem::path& file) override { revealFile(file); }

private:
    std::optional<std::string> nameOf(xcb_window_t window, std::optional<pid_t> process);

    const XConnection& x;
    ApplicationNames names;
};

} // namespace platform::desktop
