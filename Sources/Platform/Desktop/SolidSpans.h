#pragma once

#include <vector>

#include <QImage>
#include <xcb/xcb.h>

namespace platform::desktop {

// The pixels of a picture that are more there than not, as few rectangles. Any thread.
std::vector<xcb_rectangle_t> solidSpans(const QImage& picture);

} // namespace platform::desktop
