#pragma once

#include "Platform/Desktop/X11/Server/XConnection.h"

namespace platform::desktop {

// Whether a window may now take the keyboard and the mouse for itself alone. Not while another has either: a
// menu, or a program that was told to watch for a key, until that is released. Any thread.
bool isInputFree(const XConnection& x);

} // namespace platform::desktop
