#pragma once

#include "Platform/Input/Workspace.h"

#include <vector>

namespace platform::headless {

// One application in front, or none.
class HeadlessWorkspace : public Workspace {
public:
    std::optional<RunningApplication> frontmost;
    std::vector<RunningApplication> activated;

    std::optional<RunningApplication> frontmostApplication() override { return frontmost; }
    void activate(const RunningApplication& application) override { activated.push_back(application); }
};

} // namespace platform::headless
