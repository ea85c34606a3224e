#pragma once

#include "Platform/Desktop/X11/Server/XConnection.h"

namespace platform::desktop {

// What keeps this process from watching and posting keys: the key of the host's text about it. Null if
// nothing does. Main thread.
const char* trustObstacle(const XConnection& x);

} // namespace platform::desktop
