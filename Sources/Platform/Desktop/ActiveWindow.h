#pragma once

#include "Platform/Desktop/XConnection.h"

#include <sys/types.h>

namespace platform::desktop {

// The top-level window that has the keyboard: the window manager's word, or else where the input focus is.
// None while nothing has it. Any thread.
xcb_window_t activeWindow(const XConnection& x);

// Asks the window manager to bring the window to the front and to give it the keyboard.
void bringToFront(const XConnection& x, xcb_window_t window);

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
