#pragma once

#include "Platform/Desktop/X11/Server/XConnection.h"

#include <QRect>

namespace platform::desktop {

// The end of the desktop's panel where icons stand, as Qt counts; empty if no part of a monitor is kept free
// of windows. The primary monitor goes before others, and of a monitor's panels the one at the top. Main
// thread.
QRect endOfPanel(const XConnection& x);

} // namespace platform::desktop
