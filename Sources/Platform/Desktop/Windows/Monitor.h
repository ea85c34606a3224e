#pragma once

#include "Platform/Desktop/Painting/PixelGrid.h"
#include "Platform/Kit/Screen.h"

#include <QRect>

namespace platform::desktop {

// A part of the display that one can look at. Value.
struct Monitor {
    QRect pixels;
    // The origin is the lower left corner of the display as it was at first, so that what is shown stays
    // where it is while monitors come and go. Those of different scales stand apart from one another by their
    // distance in pixels, so that none lies on another.
    Screen screen;
    PixelGrid grid;
};

} // namespace platform::desktop
