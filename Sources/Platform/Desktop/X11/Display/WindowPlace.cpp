#include "Platform/Desktop/X11/Display/WindowPlace.h"

namespace platform::desktop {

std::optional<QRect> placeOf(const XConnection& x, xcb_window_t window) {
    const auto size = x.reply(xcb_get_geometry_reply, xcb_get_geometry(x, window));
    const auto corner =
        x.reply(xcb_translate_coordinates_reply, xcb_translate_coordinates(x, window, x.root(), 0, 0));
    if (!size || !corner)
        return std::nullopt;
    return QRect(corner->dst_x, corner->dst_y, size->width, size->height);
}

} // namespace platform::desktop
