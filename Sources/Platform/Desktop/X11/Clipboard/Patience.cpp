#include "Platform/Desktop/X11/Clipboard/Patience.h"

#include <algorithm>

namespace platform::desktop {

Duration Patience::with(const PostedKey& key) {
    if (window != key.window) {
        window = key.window;
        attended = key.number - 1;
        silences = 0;
    }
    const auto pending = std::clamp<std::uint64_t>(key.number - attended, 1, mostKeys);
    attended = key.number;
    if (silences == 0)
        return forKey * static_cast<int>(pending);
    return silences == 1 ? forKey : Duration(std::chrono::milliseconds(100));
}

void Patience::gestureBegins(const std::optional<PostedKey>& last,
                             std::chrono::steady_clock::time_point now) {
    silences = 0;
    if (last && last->time + forKey < now)
        attended = last->number;
}

} // namespace platform::desktop
