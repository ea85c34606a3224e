#pragma once

#include "Platform/Kit/Geometry.h"

#include <optional>

namespace platform {

// A screen, in the coordinates windows have on it and its neighbours. Value.
struct Screen {
    Rect frame;
    // Without what the desktop keeps for its bars.
    Rect visibleFrame;
    // Pixels to a point.
    double scale = 1;

    // The one a person works at; there may be none. Main thread.
    static std::optional<Screen> mainScreen();
};

} // namespace platform
