#pragma once

#include "Platform/Desktop/XConnection.h"

#include <QRect>

namespace platform::desktop {

// What is left of a monitor beside the desktop's bars, in pixels of the display. Main thread.
class UsableArea {
public:
    // As the bars are now. With several monitors it is asked of each bar which of them it stands on: the
    // window manager's own figure is one for all.
    UsableArea(const XConnection& x, bool hasSeveralMonitors);

    QRect of(const QRect& monitor) const;

private:
    // Rectangles at the display's edges that are kept for bars.
    std::vector<QRect> reserved;
    QRect common;
};

} // namespace platform::desktop
