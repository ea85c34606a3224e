#include "Platform/Foundation/Timer.h"

#include "Platform/Foundation/RunLoop.h"

namespace platform {

struct Timer::Repetition {
    RunLoop& runLoop;
    Duration interval;
    std::function<void()> action;
    Duration latest;
};

Timer::Timer(RunLoop& runLoop, Duration interval, std::function<void()> action)
    : running(std::make_shared<Repetition>(Repetition{runLoop, interval, std::move(action), runLoop.now()})) {
    schedule(running);
}

void Timer::schedule(const std::shared_ptr<Repetition>& repetition) {
    // From when the last turn was due, so that lateness does not add up; turns that were missed are left out.
    const auto now = repetition->runLoop.now();
    const auto missed = (now - repetition->latest) / repetition->interval;
    repetition->latest += missed * repetition->interval;
    const auto next = repetition->latest + repetition->interval;
    repetition->runLoop.postAfter(next - now, [weak = std::weak_ptr(repetition), next] {
        if (auto due = weak.lock()) {
            due->latest = next;
            // The next turn first: the action may drop the timer.
            schedule(due);
            due->action();
        }
    });
}

} // namespace platform
