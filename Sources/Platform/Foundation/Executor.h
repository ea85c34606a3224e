#pragma once

#include <chrono>
#include <functional>

namespace platform {

using Duration = std::chrono::nanoseconds;

// Runs functions one after another, in the order they were posted. Both operations may be called from any
// thread and return at once; the functions run later, on the executor's own thread.
class Executor {
public:
    virtual ~Executor() = default;

    virtual void post(std::function<void()> work) = 0;

    // Runs `work` once `delay` has passed; functions due at the same moment run in posting order.
    virtual void postAfter(Duration delay, std::function<void()> work) = 0;
};

} // namespace platform
