#include "Platform/Desktop/X11/Keys/TrustObstacle.h"

#include "Platform/Desktop/Session/SessionFacts.h"
#include "Platform/Desktop/X11/Keys/KeyWatch.h"

#include <xcb/xtest.h>

namespace platform::desktop {

const char* trustObstacle(const XConnection& x) {
    if (isWaylandSession(x))
        return "trust.wayland";
    const auto* typing = xcb_get_extension_data(x, &xcb_test_id);
    if (!typing || !typing->present)
        return "trust.typing";
    return KeyWatch::isPossible(x) ? nullptr : "trust.listening";
}

} // namespace platform::desktop
