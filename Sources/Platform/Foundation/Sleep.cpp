#include "Platform/Foundation/Sleep.h"

#include "Platform/Foundation/Wait.h"

namespace platform {

Task<void> sleep(Duration duration) {
    TaskContext context = co_await currentContext();
    auto wait = std::make_shared<Wait>();
    context.executor->postAfter(duration, [wait] { wait->fire(); });
    bool elapsed = co_await until(wait);
    if (!elapsed)
        throw CancellationError();
}

Task<void> sleepUnlessCancelled(Duration duration) {
    try {
        co_await sleep(duration);
    } catch (const CancellationError&) {
        // The wait is over all the same.
    }
}

} // namespace platform
