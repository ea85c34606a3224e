#pragma once

#include "Platform/Foundation/Descriptor.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace platform::desktop {

// What another start of the program asks of the running copy: a word of its command line, or "open".
struct Call {
    std::string command;
    // Of the calling process: when it was started, in ticks of the kernel's clock, and its number.
    std::uint64_t started = 0;
    std::int64_t process = 0;
};

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
    // The next call that has come.
    std::optional<Call> receive() const;

private:
    void listen(const files::Descriptor& folder);

    const files::Descriptor lock;
    files::Descriptor socket;
    bool taken = false;
};

// Sends a command to the copy that has the place in `folder`. False if there is none or it cannot be reached.
bool callRunningCopy(const std::filesystem::path& folder, std::string_view command);

} // namespace platform::desktop
