#pragma once

#include "Platform/Kit/Geometry.h"

#include <algorithm>

namespace platform {

// The pace of an animation: a cubic from (0, 0) to (1, 1) by way of two control points. The share of time
// that has passed is its x, which lies between 0 and 1 in both points; the share of the way gone is its y.
// Any thread.
class TimingFunction {
public:
    constexpr TimingFunction(double x1, double y1, double x2, double y2) : first{x1, y1}, second{x2, y2} {}

    static constexpr TimingFunction linear() { return {0, 0, 1, 1}; }
    // Of a transaction that names none.
    static constexpr TimingFunction defaultCurve() { return {0.25, 0.1, 0.25, 1}; }
    static constexpr TimingFunction easeIn() { return {0.42, 0, 1, 1}; }
    static constexpr TimingFunction easeInEaseOut() { return {0.42, 0, 0.58, 1}; }
    // Of what is on its way already and sets out for a new end at the speed it has: shares of the new way in
    // the new time. It soon covers most of the way and never goes beyond the end, unless it was going the
    // other way.
    static constexpr TimingFunction goingOn(double speed) {
        const double x = speed > 0 ? std::min(0.1, 1 / speed) : 0.1;
        return {x, x * speed, 0.1, 1};
    }

    constexpr bool isLinear() const { return first.x == first.y && second.x == second.y; }

    // The share of the way gone at a share of the time.
    double value(double time) const;

private:
    Point first;
    Point second;
};

} // namespace platform
