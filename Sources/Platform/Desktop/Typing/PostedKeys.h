#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
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

// The only window that combinations may go to, and since when.
struct KeyTarget {
    std::uint32_t window = 0;
    std::chrono::steady_clock::time_point time;
};

// The last combination typed, kept by the keyboard for the pasteboard, which waits for its effect; and where
// the next ones may go, told by the workspace. Any thread.
class PostedKeys {
public:
    // Before it is typed.
    void record(ClipboardEffect effect, std::uint32_t window) {
        std::lock_guard lock(mutex);
        last = PostedKey{last ? last->number + 1 : 1, effect, window, std::chrono::steady_clock::now()};
    }

    // Once it is in the window's queue.
    void reportTyped() const {
        std::lock_guard lock(mutex);
        if (observer)
            observer();
    }

    // The one observer is called, on any thread, whenever a combination has been typed; nobody where it is
    // null.
    void observe(std::function<void()> whenTyped) {
        std::lock_guard lock(mutex);
        observer = std::move(whenTyped);
    }

    std::optional<PostedKey> latest() const {
        std::lock_guard lock(mutex);
        return last;
    }

    // A key or a button that the user pressed, told by the keyboard.
    void recordUsersAct() { usersAct = std::chrono::steady_clock::now(); }
    std::chrono::steady_clock::time_point lastUsersAct() const { return usersAct; }

    // For combinations to come; none: whichever window has the keyboard.
    void aim(std::optional<std::uint32_t> window) {
        std::lock_guard lock(mutex);
        only.reset();
        if (window)
            only = KeyTarget{*window, std::chrono::steady_clock::now()};
    }

    std::optional<KeyTarget> target() const {
        std::lock_guard lock(mutex);
        return only;
    }

private:
    mutable std::mutex mutex;
    std::optional<PostedKey> last;
    std::optional<KeyTarget> only;
    std::function<void()> observer;
    std::atomic<std::chrono::steady_clock::time_point> usersAct{};
};

} // namespace platform::desktop
