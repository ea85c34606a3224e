#pragma once

namespace platform {

// Places and extents in points, y upwards. Values, for any thread.
struct Point {
    double x = 0;
    double y = 0;

    bool operator==(const Point&) const = default;
};

struct Size {
    double width = 0;
    double height = 0;

    bool operator==(const Size&) const = default;
};

struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    constexpr Point origin() const { return {x, y}; }
    constexpr Size size() const { return {width, height}; }
    constexpr double midX() const { return x + width / 2; }
    constexpr double midY() const { return y + height / 2; }
    constexpr double maxX() const { return x + width; }
    constexpr double maxY() const { return y + height; }
    // Of two that touch, only one contains a point between them.
    constexpr bool contains(const Point& point) const {
        return point.x >= x && point.x < maxX() && point.y >= y && point.y < maxY();
    }

    bool operator==(const Rect&) const = default;
};

} // namespace platform
