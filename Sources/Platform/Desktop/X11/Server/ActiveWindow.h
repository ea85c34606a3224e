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

// The two names a window gives its kind by.
struct WindowClass {
    std::string instance;
    std::string name;

    bool operator==(const WindowClass&) const = default;
};

WindowClass windowClassOf(const XConnection& x, xcb_window_t window);

// The process of a window, if it runs on this machine.
std::optional<pid_t> processOf(const XConnection& x, xcb_window_t window);

// The name of a process's program, of its script where an interpreter runs one.
std::optional<std::string> programOf(pid_t process);

} // namespace platform::desktop
