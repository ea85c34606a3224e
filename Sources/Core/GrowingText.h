#pragma once

#include <mutex>
#include <string>
#include <utility>

namespace lumarin {

// Hands a text that grows on one thread to another. What comes before the other has taken the last is taken
// with it, so that a flood of pieces costs no more than its length.
class GrowingText {
public:
    // All of the text so far. True if the other thread has to be told to take it.
    bool grow(const std::string& soFar) {
        const std::lock_guard lock(mutex);
        added.append(soFar, length);
        length = soFar.size();
        return !std::exchange(isToBeTaken, true);
    }

    // All that has come, for the other thread until it takes the next.
    const std::string& take() {
        const std::lock_guard lock(mutex);
        taken += added;
        added.clear();
        isToBeTaken = false;
        return taken;
    }

private:
    std::mutex mutex;
    std::string added;
    std::size_t length = 0;
    bool isToBeTaken = false;
    std::string taken;
};

} // namespace lumarin
