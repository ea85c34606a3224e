#pragma once

#include "Platform/Foundation/Executor.h"
#include "Platform/Kit/Color.h"
#include "Platform/Kit/TimingFunction.h"
#include "Platform/Kit/Transform.h"

#include <limits>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace platform {

// What a layer's property may be; two of a kind blend. Colours and locations blend one by one.
using AnimationValue =
    std::variant<double, Point, Size, Transform, Color, std::vector<double>, std::vector<Color>>;

// What is shown when an animation has ended: the layer's own value, or the animation's last one for as long
// as the layer has the animation.
enum class FillMode { removed, forwards };

// What basic and keyframe animations have in common. Values, copied by the layer they are added to. Any
// thread.
struct Animation {
    static constexpr double forever = std::numeric_limits<double>::infinity();

    // The property: "opacity", "colors", "locations", "backgroundColor", "borderColor", "borderWidth",
    // "cornerRadius", "position", "bounds.size", "transform", or the part of one: "position.x", "position.y",
    // "transform.scale", "transform.rotation.z", "transform.translation.x", "transform.translation.y".
    std::string keyPath;
    // Of one run from the first value to the last.
    Duration duration = std::chrono::milliseconds(250);
    // A repetition begins anew at the first value.
    double repeatCount = 1;
    // The pace of one run as a whole.
    TimingFunction timingFunction = TimingFunction::linear();
    // In the time of the main run loop; before it the layer shows its own value. When it is added, if left
    // out.
    std::optional<Duration> beginTime{};
    // Whether the layer forgets it at the end.
    bool isRemovedOnCompletion = true;
    FillMode fillMode = FillMode::removed;
};

// From one value to another.
struct BasicAnimation : Animation {
    AnimationValue fromValue;
    AnimationValue toValue;
};

// Through several values, straight from one to the next.
struct KeyframeAnimation : Animation {
    std::vector<AnimationValue> values;
    // One for each value, rising, the first 0 and the last 1: shares of the duration.
    std::vector<double> keyTimes;

    // What it sets the property to when `share` of a run's time has passed.
    AnimationValue value(double share) const;
};

} // namespace platform
