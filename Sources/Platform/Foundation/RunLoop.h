#pragma once

#include "Platform/Foundation/Executor.h"
#include "Platform/Foundation/Timer.h"

namespace platform {

// The thread everything is decided on, and the program's clock.
class RunLoop : public Executor {
public:
    // Time that has passed since some fixed moment; never goes back. Any thread.
    virtual Duration now() const = 0;

    // The calendar's time. Any thread.
    virtual std::chrono::system_clock::time_point date() const = 0;

    // Calls `action` every `interval`, first after one interval, until the timer is dropped. On the loop's
    // thread.
    Timer every(Duration interval, std::function<void()> action) {
        return Timer(*this, interval, std::move(action));
    }
};

} // namespace platform
