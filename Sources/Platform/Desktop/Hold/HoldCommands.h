#pragma once

#include "Platform/Desktop/Hold/HeldKey.h"

#include <optional>
#include <string_view>

namespace platform::desktop {

// The commands that a desktop runs for its keys, each by a process of its own: "press", "release", "toggle"
// and "cancel". A release may overtake the press that it belongs to. Main thread.
class HoldCommands {
public:
    HoldCommands(HeldKey& heldKey, const RunLoop& mainRunLoop) : key(heldKey), clock(mainRunLoop) {}

    // False if it is none of them.
    bool perform(std::string_view command);

private:
    void press();
    void release();

    HeldKey& key;
    const RunLoop& clock;
    // Of a release whose press has not come.
    std::optional<Duration> early;
    // The key is still down for the user, and no longer here.
    bool isAbandoned = false;
};

} // namespace platform::desktop
