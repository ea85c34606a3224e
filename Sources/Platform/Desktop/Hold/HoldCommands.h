#pragma once

#include "Platform/Desktop/Hold/HeldKey.h"

#include <compare>
#include <cstdint>
#include <optional>
#include <string_view>

namespace platform::desktop {

// When a process was started, in the order in which the processes of one machine are.
struct StartOrder {
    // In ticks of the kernel's clock, which several processes may share.
    std::uint64_t ticks = 0;
    std::int64_t process = 0;

    auto operator<=>(const StartOrder&) const = default;
};

// The commands that a desktop runs for its keys, each by a process of its own: "press", "release", "toggle"
// and "cancel". They count in the order in which those were started, whichever comes first. Main thread.
class HoldCommands {
public:
    explicit HoldCommands(HeldKey& heldKey) : key(heldKey) {}

    // False if it is none of them.
    bool perform(std::string_view command, StartOrder started);

private:
    HeldKey& key;
    StartOrder lastRelease;
};

} // namespace platform::desktop
