#include "Platform/Kit/TimingFunction.h"

#include <cmath>
#include <limits>

namespace platform {
namespace {

// One coordinate of the cubic at its parameter, and its slope there.
double cubic(double first, double second, double at) {
    const double rest = 1 - at;
    return 3 * rest * rest * at * first + 3 * rest * at * at * second + at * at * at;
}

double slope(double first, double second, double at) {
    const double rest = 1 - at;
    return 3 * rest * rest * first + 6 * rest * at * (second - first) + 3 * at * at * (1 - second);
}

} // namespace

double TimingFunction::value(double time) const {
    if (time <= 0 || time >= 1 || isLinear())
        return time;
    // The parameter at which x is the time: Newton's steps, and halving where they would leave the interval
    // that is known to hold it, as where the slope is nothing.
    double low = 0;
    double high = 1;
    double at = time;
    while (high - low > std::numeric_limits<double>::epsilon()) {
        const double error = cubic(first.x, second.x, at) - time;
        if (std::abs(error) < std::numeric_limits<double>::epsilon())
            break;
        (error > 0 ? high : low) = at;
        at -= error / slope(first.x, second.x, at);
        if (!(at > low && at < high))
            at = (low + high) / 2;
    }
    return cubic(first.y, second.y, at);
}

} // namespace platform
