#include "Platform/Desktop/X11/Keys/TrustObstacle.h"

#include <cstdlib>
#include <string_view>

#include <xcb/xinput.h>
#include <xcb/xtest.h>

namespace platform::desktop {
namespace {

// The inner display of a Wayland session has all that it takes, but keys of other applications are out of its
// reach.
bool isWaylandSession(const XConnection& x) {
    const char* kind = std::getenv("XDG_SESSION_TYPE");
    if (kind && kind == std::string_view("wayland"))
        return true;
    // It has devices that say so.
    auto devices =
        x.reply(xcb_input_xi_query_device_reply, xcb_input_xi_query_device(x, XCB_INPUT_DEVICE_ALL));
    if (!devices)
        return false;
    for (auto device = xcb_input_xi_query_device_infos_iterator(devices.get()); device.rem > 0;
         xcb_input_xi_device_info_next(&device)) {
        std::string_view name(xcb_input_xi_device_info_name(device.data),
                              static_cast<std::size_t>(xcb_input_xi_device_info_name_length(device.data)));
        if (name.starts_with("xwayland-"))
            return true;
    }
    return false;
}

bool canListen(const XConnection& x) {
    const auto* input = xcb_get_extension_data(x, &xcb_input_id);
    if (!input || !input->present)
        return false;
    // Before 2.1 raw events stay away while any program has grabbed the keyboard.
    auto version = x.reply(xcb_input_xi_query_version_reply, xcb_input_xi_query_version(x, 2, 2));
    return version
           && (version->major_version > 2 || (version->major_version == 2 && version->minor_version >= 1));
}

} // namespace

const char* trustObstacle(const XConnection& x) {
    if (isWaylandSession(x))
        return "trust.wayland";
    const auto* typing = xcb_get_extension_data(x, &xcb_test_id);
    if (!typing || !typing->present)
        return "trust.typing";
    return canListen(x) ? nullptr : "trust.listening";
}

} // namespace platform::desktop
