#pragma once

#include "Platform/Foundation/Executor.h"
#include "Platform/Kit/TimingFunction.h"

#include <functional>

namespace platform {

// The duration and curve of what animators change. Main thread.
class AnimationContext {
public:
    Duration duration = std::chrono::milliseconds(250);
    TimingFunction timingFunction = TimingFunction::defaultCurve();

    // Calls `changes` at once with a context of its own, which holds for the animators used inside, and
    // `completion` from the main run loop when all that they changed has arrived: after the duration, also if
    // nothing had far to go, and on the loop's next turn if no animator was used.
    static void runAnimationGroup(const std::function<void(AnimationContext&)>& changes,
                                  std::function<void()> completion = nullptr);

    // For animators: makes the change of a layer under the group's context, or without a group under a plain
    // one.
    static void animate(const std::function<void()>& change);

private:
    // The longest animation of the group; nothing if there is none.
    Duration longest = Duration::zero();
};

} // namespace platform
