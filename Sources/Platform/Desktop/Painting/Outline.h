#pragma once

#include "Platform/Kit/Color.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QImage>
#include <QRectF>

namespace platform::desktop {

// A rectangle with rounded corners, in pixels. Value.
struct Outline {
    Outline(const QRectF& outer, double wishedRadius);

    QRectF rect;
    double radius;

    // From the edge to the point, negative inside.
    double distance(double x, double y) const {
        const double right = std::abs(x - middle.x()) - straightWidth;
        const double up = std::abs(y - middle.y()) - straightHeight;
        // Without a branch, which would go either way from pixel to pixel.
        const double outerRight = std::max(right, 0.0);
        const double outerUp = std::max(up, 0.0);
        return std::sqrt(outerRight * outerRight + outerUp * outerUp) + std::min(std::max(right, up), 0.0)
               - radius;
    }
    // Between the first and the last of these columns a row is the same all along.
    int firstStraightColumn() const;
    int lastStraightColumn() const;
    // The first column of that row with all of it at least `depth` inside the edge, and the one behind the
    // last; nothing between them if there is none.
    std::pair<int, int> deepColumns(double y, double depth) const;

    bool operator==(const Outline&) const = default;

private:
    QPointF middle;
    // Halves of what lies between the corners.
    double straightWidth;
    double straightHeight;
};

// Both are for small pictures with premultiplied colours whose first pixel is at `corner`: Qt hands the many
// short spans of a smooth edge to several threads, and waiting for them takes longer than the work.

// Leaves of the picture what is inside.
void clip(QImage& picture, const QPoint& corner, const Outline& outline);

// Draws a line of the width along the inside of the edge, in colours that change from top to bottom.
void strokeInside(QImage& picture, const QPoint& corner, const Outline& outline, double width,
                  const Color& top, const Color& bottom);

} // namespace platform::desktop
