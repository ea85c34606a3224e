#pragma once

#include "Platform/Desktop/X11/Server/XConnection.h"

namespace platform::desktop {

// Before all others on the screen, the pill and other windows of no window manager's too.
xcb_window_t frontWindow(const XConnection& x);

// A message about a window, with its first two values.
void sendMessage(const XConnection& x, xcb_window_t receiver, xcb_window_t window, const std::string& type,
                 std::uint32_t first, std::uint32_t second);

bool isPill(const XConnection& x, xcb_window_t window);

// Whether the window manager did so.
bool becomeFullScreen(const XConnection& x, xcb_window_t window);

} // namespace platform::desktop
