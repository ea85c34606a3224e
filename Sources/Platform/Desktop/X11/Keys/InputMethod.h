#pragma once

#include "Platform/Desktop/X11/Server/XConnection.h"

namespace platform::desktop {

// Whether an input method has its window with what the letters typed so far may stand for on the screen. Any
// thread.
bool isComposing(const XConnection& x);

} // namespace platform::desktop
