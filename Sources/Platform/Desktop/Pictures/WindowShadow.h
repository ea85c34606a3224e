#pragma once

#include "Platform/Desktop/Painting/Outline.h"

namespace platform::desktop {

// How far the shadow reaches beyond its outline, in points.
constexpr double shadowReach = 32;

// Puts the shadow of the outline in place of all that the picture holds; the picture's first pixel is at
// `corner`. Any thread.
void paintShadow(QImage& picture, const QPoint& corner, const Outline& outline, double scale);

} // namespace platform::desktop
