#pragma once

#include "Platform/Desktop/X11/Server/XConnection.h"

namespace platform::desktop {

// The two names a window gives its kind by.
struct WindowClass {
    std::string instance;
    std::string name;

    bool operator==(const WindowClass&) const = default;
};

// Any thread.
WindowClass windowClassOf(const XConnection& x, xcb_window_t window);

} // namespace platform::desktop
