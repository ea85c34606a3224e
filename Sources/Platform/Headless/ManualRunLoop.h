#pragma once

#include "Platform/Foundation/RunLoop.h"

#include <map>
#include <mutex>

namespace platform::headless {

// A run loop whose clock moves only when it is told to. Work may be posted from any thread; it runs inside
// `advance`, on the thread that calls it.
class ManualRunLoop : public RunLoop {
public:
    void post(std::function<void()> work) override;
    void postAfter(Duration delay, std::function<void()> work) override;
    Duration now() const override;
    std::chrono::system_clock::time_point date() const override;

    // Moves the clock on, and runs all that falls due on the way, each piece of work at its own moment.
    void advance(Duration duration);

    // Advances until nothing is left to do, but not by more than `limit`.
    void drain(Duration limit);

private:
    std::function<void()> takeNext(Duration until);

    mutable std::mutex mutex;
    Duration time{};
    std::multimap<Duration, std::function<void()>> queue;
};

} // namespace platform::headless
