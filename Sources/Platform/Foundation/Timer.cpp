#include "Platform/Foundation/Timer.h"

namespace platform {

struct Timer::Repetition {
    Executor& executor;
    Duration interval;
    std::function<void()> action;
};

Timer::Timer(Executor& executor, Duration interval, std::function<void()> action)
    : running(std::make_shared<Repetition>(executor, interval, std::move(action))) {
    schedule(running);
}

void Timer::schedule(const std::shared_ptr<Repetition>& repetition) {
    repetition->executor.postAfter(repetition->interval, [weak = std::weak_ptr(repetition)] {
        if (auto due = weak.lock()) {
            // The next turn first: the action may drop the timer.
            schedule(due);
            due->action();
        }
    });
}

} // namespace platform
