#pragma once

#include "Platform/Kit/Color.h"

namespace platform::desktop {

// A colour of the desktop's theme as it is at present. Main thread.
Color themeColor(SystemColor name);

} // namespace platform::desktop
