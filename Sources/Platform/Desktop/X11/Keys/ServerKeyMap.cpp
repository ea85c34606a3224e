#include "Platform/Desktop/X11/Keys/ServerKeyMap.h"

#include "Platform/Foundation/Release.h"

#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

namespace platform::desktop {

std::shared_ptr<const KeyMap> readKeyMap(const XConnection& x) {
    const std::unique_ptr<xkb_context, platform::Release<xkb_context_unref>> context(
        xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES));
    if (!xkb_x11_setup_xkb_extension(x, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                                     XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, nullptr,
                                     nullptr))
        return nullptr;
    auto device = xkb_x11_get_core_keyboard_device_id(x);
    if (!context || device < 0)
        return nullptr;
    auto* map = xkb_x11_keymap_new_from_device(context.get(), x, device, XKB_KEYMAP_COMPILE_NO_FLAGS);
    return map ? std::make_shared<const KeyMap>(map) : nullptr;
}

// Not by a state of the map's: libxkbcommon counts a map's users without regard to threads. The two bits
// above the buttons are the group.
std::uint32_t currentGroup(const XConnection& x) {
    constexpr unsigned place = 13;
    constexpr unsigned mostGroups = 4;
    const auto state = x.reply(xcb_query_pointer_reply, xcb_query_pointer(x, x.root()));
    return state ? unsigned{state->mask} >> place & (mostGroups - 1) : 0U;
}

} // namespace platform::desktop
