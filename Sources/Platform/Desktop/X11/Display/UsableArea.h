#pragma once

#include "Platform/Desktop/X11/Server/XConnection.h"

#include <QRect>

namespace platform::desktop {

// What is left of a monitor beside the desktop's bars, in pixels of the display. Main thread.
class UsableArea {
public:
    // As the bars are now. The primary monitor comes first.
    UsableArea(const XConnection& x, const std::vector<QRect>& monitors);

    QRect of(const QRect& monitor) const;

private:
    // What the window manager keeps free of bars on each monitor, where it says so.
    std::vector<QRect> known;
    // Or else rectangles at the display's edges that are kept for bars.
    std::vector<QRect> reserved;
};

} // namespace platform::desktop
