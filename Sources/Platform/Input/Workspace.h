#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace platform {

// An application that was seen running; it may have ended since.
struct RunningApplication {
    std::uint64_t identifier;
    // The name a person knows it by.
    std::optional<std::string> localizedName;
};

// The applications of the user's session. Main thread.
class Workspace {
public:
    virtual ~Workspace() = default;

    virtual std::optional<RunningApplication> frontmostApplication() = 0;

    // Brings the application's window to the front and gives it the keyboard; nothing happens if it has
    // ended.
    virtual void activate(const RunningApplication& application) = 0;

    // Shows the file in the desktop's file manager, selected where that can select.
    virtual void reveal(const std::filesystem::path& file) = 0;
};

} // namespace platform
