#pragma once

#include "Platform/Kit/Geometry.h"

#include <QRectF>

namespace platform::desktop {

// Where the points of a coordinate system lie among pixels, which count downwards. Value.
struct PixelGrid {
    // Pixels to a point.
    Size scale{1, 1};
    // Of the point (0, 0).
    Point origin;

    QPointF pixelOf(const Point& point) const {
        return {origin.x + point.x * scale.width, origin.y - point.y * scale.height};
    }
    QRectF pixelsOf(const Rect& rect) const {
        return {pixelOf({rect.x, rect.maxY()}), QSizeF(rect.width * scale.width, rect.height * scale.height)};
    }
};

} // namespace platform::desktop
