#pragma once

#include "Platform/Foundation/Descriptor.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace platform::desktop {

// Holds the place of the user's one running copy of the program, until it ends in whatever way, and what
// other starts send there.
class SingleInstance {
public:
    // The place is in `folder`, which is created.
    explicit SingleInstance(const std::filesystem::path& folder);
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;

    // Whether another copy has the place. Where no file can be made, nobody knows of another.
    bool isTaken() const { return taken; }

    // Readable once another start has called.
    int descriptor() const { return socket.number(); }
    // The next of the commands that have come: a word of the program's command line, or "open".
    std::optional<std::string> receive() const;

private:
    void listen(const files::Descriptor& folder);

    const files::Descriptor lock;
    files::Descriptor socket;
    bool taken = false;
};

// Sends a command to the copy that has the place in `folder`. False if there is none or it cannot be reached.
bool callRunningCopy(const std::filesystem::path& folder, std::string_view command);

} // namespace platform::desktop
