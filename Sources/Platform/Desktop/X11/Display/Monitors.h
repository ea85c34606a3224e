#pragma once

#include "Platform/Desktop/Painting/PixelGrid.h"
#include "Platform/Desktop/X11/Server/XConnection.h"
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

// The monitors as they are now, the primary one first; none while all are gone or switched off. Main thread.
std::vector<Monitor> monitorsOf(const XConnection& x);

// The monitor with most of the window that has the keyboard, or else the first.
const Monitor& mainMonitor(const XConnection& x, const std::vector<Monitor>& monitors);

} // namespace platform::desktop
