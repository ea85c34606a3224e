#pragma once

namespace platform {

// A colour with straight (not premultiplied) components between 0 and 1. Any thread.
struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 0;

    static constexpr Color calibrated(double red, double green, double blue, double alpha) {
        return {red, green, blue, alpha};
    }
    static constexpr Color white(double white, double alpha) { return {white, white, white, alpha}; }
    static constexpr Color clear() { return {}; }

    constexpr Color withAlphaComponent(double component) const { return {red, green, blue, component}; }

    bool operator==(const Color&) const = default;
};

} // namespace platform
