#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>

namespace platform::desktop {

// What a combination typed on the user's behalf makes the application do with the clipboard.
enum class ClipboardEffect { none, copy, paste };

// One combination that was typed, and the top-level window that had the keyboard then.
struct PostedKey {
    std::uint64_t number = 0;
    ClipboardEffect effect = ClipboardEffect::none;
    std::uint32_t window = 0;
    std::chrono::steady_clock::time_point time;
};

// The last combination typed, kept by the keyboard for the pasteboard, which waits for its effect. Any
// thread.
class PostedKeys {
public:
    void record(ClipboardEffect effect, std::uint32_t window) {
        std::lock_guard lock(mutex);
        last = PostedKey{last ? last->number + 1 : 1, effect, window, std::chrono::steady_clock::now()};
    }

    std::optional<PostedKey> latest() const {
        std::lock_guard lock(mutex);
        return last;
    }

private:
    mutable std::mutex mutex;
    std::optional<PostedKey> last;
};

} // namespace platform::desktop
