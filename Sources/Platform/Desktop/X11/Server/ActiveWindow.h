#pragma once

#include "Platform/Desktop/X11/Server/XConnection.h"

#include <sys/types.h>

namespace platform::desktop {

// The top-level window that has the keyboard: the window manager's word, or else where the input focus is.
// None while nothing has it. Any thread.
xcb_window_t activeWindow(const XConnection& x);

// The window that keys go to, a top-level one or one in it. None where the pointer decides.
std::optional<xcb_window_t> focusedWindow(const XConnection& x);

// Brings the top-level window to the front and gives it the keyboard: asks the window manager for both, or
// does both where there is none that would. Then keys go to `focus` in it if that is still there.
void bringToFront(const XConnection& x, xcb_window_t window,
                  std::optional<xcb_window_t> focus = std::nullopt);

// The process that a window says it is of, if that runs on this machine.
std::optional<pid_t> claimedProcessOf(const XConnection& x, xcb_window_t window);

} // namespace platform::desktop
