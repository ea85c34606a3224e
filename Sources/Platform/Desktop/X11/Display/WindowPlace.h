#pragma once

#include "Platform/Desktop/X11/Server/XConnection.h"

#include <optional>

#include <QRect>

namespace platform::desktop {

// Where a window is on the display, in pixels and without its frame; nothing if it is gone. On any thread.
std::optional<QRect> placeOf(const XConnection& x, xcb_window_t window);

} // namespace platform::desktop
