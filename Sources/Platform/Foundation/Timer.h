#pragma once

#include "Platform/Foundation/Executor.h"

#include <memory>

namespace platform {

class RunLoop;

// Repeats an action until it is dropped. To be made and dropped on its run loop's thread.
class [[nodiscard]] Timer {
public:
    Timer() = default;
    Timer(RunLoop& runLoop, Duration interval, std::function<void()> action);

private:
    struct Repetition;
    static void schedule(const std::shared_ptr<Repetition>& repetition);

    std::shared_ptr<Repetition> running;
};

} // namespace platform
