#include "Platform/Desktop/X11/Display/Compositor.h"

namespace platform::desktop {

Backdrop Compositor::backdrop() const {
    if (watch.owner() == XCB_NONE)
        return Backdrop::none;
    // Whoever blurs behind the windows that wish it says so.
    return x.property(x.root(), x.atom("_KDE_NET_WM_BLUR_BEHIND_REGION")) ? Backdrop::blurred
                                                                          : Backdrop::plain;
}

} // namespace platform::desktop
