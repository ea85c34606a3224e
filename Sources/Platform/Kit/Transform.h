#pragma once

#include "Platform/Kit/Geometry.h"

namespace platform {

// What becomes of a layer about its position: first scaled, then moved. Any thread.
struct Transform {
    Size scale{1, 1};
    Point translation;

    static constexpr Transform identity() { return {}; }
    static constexpr Transform makeScale(double x, double y) { return {{x, y}, {}}; }
    static constexpr Transform makeTranslation(double x, double y) { return {{1, 1}, {x, y}}; }

    // `first`, and then `second` of what comes out.
    static constexpr Transform concat(const Transform& first, const Transform& second) {
        return {{first.scale.width * second.scale.width, first.scale.height * second.scale.height},
                {first.translation.x * second.scale.width + second.translation.x,
                 first.translation.y * second.scale.height + second.translation.y}};
    }

    bool operator==(const Transform&) const = default;
};

} // namespace platform
