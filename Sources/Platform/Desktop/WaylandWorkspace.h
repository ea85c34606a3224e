#pragma once

#include "Platform/Desktop/Applications/ApplicationNames.h"
#include "Platform/Desktop/Session/FileReveal.h"
#include "Platform/Desktop/Typing/PostedKeys.h"
#include "Platform/Desktop/Wayland/Keys/Toplevels.h"
#include "Platform/Input/Workspace.h"

namespace platform::desktop {

// The applications of a Wayland session, as far as the compositor tells of them. Combinations that are typed
// after one was activated are for that one alone, until it is asked again which is in front.
class WaylandWorkspace : public Workspace {
public:
    WaylandWorkspace(Toplevels& windows, ApplicationNames applicationNames, PostedKeys& keys)
        : toplevels(windows), names(std::move(applicationNames)), postedKeys(keys) {}

    // Names are known soon after this.
    void readNames() { names.read(); }

    std::optional<RunningApplication> frontmostApplication() override;
    void activate(const RunningApplication& application) override;
    void reveal(const std::filesystem::path& file) override { revealFile(file); }

private:
    Toplevels& toplevels;
    ApplicationNames names;
    PostedKeys& postedKeys;
};

} // namespace platform::desktop
