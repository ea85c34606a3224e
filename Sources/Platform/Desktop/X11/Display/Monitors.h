#pragma once

#include "Platform/Desktop/Windows/Monitor.h"
#include "Platform/Desktop/X11/Server/XConnection.h"

namespace platform::desktop {

// The monitors as they are now, the primary one first; none while all are gone or switched off. Main thread.
std::vector<Monitor> monitorsOf(const XConnection& x);

// The monitor with most of the window that has the keyboard, or else the first.
const Monitor& mainMonitor(const XConnection& x, const std::vector<Monitor>& monitors);

} // namespace platform::desktop
