#pragma once

#include "Platform/Desktop/Typing/PostedKeys.h"
#include "Platform/Foundation/Executor.h"

namespace platform::desktop {

// How long the front window is waited for. An application may be busy for a second before each key; one that
// hangs, or has nothing to copy and no way of telling, costs the whole time once or twice and then little.
class Patience {
public:
    static constexpr Duration forKey = std::chrono::milliseconds(1250);
    static constexpr std::uint64_t mostKeys = 3;

    // Time for each key, up to this one, that its window was not given time for yet.
    Duration with(const PostedKey& key);
    void answered() { silences = 0; }
    void keptSilent() { ++silences; }
    // All is forgiven at a gesture's begin; `last` is the key before it.
    void gestureBegins(const std::optional<PostedKey>& last, std::chrono::steady_clock::time_point now);

private:
    std::uint32_t window = 0;
    std::uint64_t attended = 0;
    int silences = 0;
};

} // namespace platform::desktop
