#pragma once

#include <vector>

#include <QImage>
#include <QRect>

namespace platform::desktop {

// Where a picture is at least that dense, from 1 to 255, as few rectangles: each row from its first such
// pixel to its last. Any thread.
std::vector<QRect> solidSpans(const QImage& picture, int density);

} // namespace platform::desktop
