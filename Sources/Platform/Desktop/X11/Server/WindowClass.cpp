#include "Platform/Desktop/X11/Server/WindowClass.h"

namespace platform::desktop {

WindowClass windowClassOf(const XConnection& x, xcb_window_t window) {
    auto property = x.property(window, XCB_ATOM_WM_CLASS);
    if (!property)
        return {};
    auto& names = property->bytes;
    auto split = names.find('\0');
    if (split == std::string::npos)
        return {names, {}};
    // Both names end with a zero.
    return {names.substr(0, split), names.c_str() + split + 1};
}

} // namespace platform::desktop
