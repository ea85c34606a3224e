#pragma once

#include "Platform/Desktop/Pictures/Backdrop.h"
#include "Platform/Desktop/X11/Display/OwnerWatch.h"

namespace platform::desktop {

// The program that puts windows together on the screen, which may come and go. Main thread.
class Compositor {
public:
    // `changed` is called after it came or went.
    Compositor(const XConnection& display, std::function<void()> changed)
        : x(display), watch(x, "_NET_WM_CM", std::move(changed)) {}

    Backdrop backdrop() const;

private:
    const XConnection& x;
    OwnerWatch watch;
};

} // namespace platform::desktop
