#pragma once

#include "Platform/Input/Workspace.h"

#include <vector>

namespace platform::headless {

// One application in front, or none.
class HeadlessWorkspace : public Workspace {
public:
    std::optional<RunningApplication> frontmost;
    std::vector<RunningApplication> activated;
    std::vector<std::filesystem::path> revealed;

    std::optional<RunningApplication> frontmostApplication() override { return frontmost; }
    void activate(const RunningApplication& application) override { activated.push_back(application); }
    void reveal(const std::filesystem::path& file) override { revealed.push_back(file); }
};

} // namespace platform::headless
