#include "Platform/Desktop/Typing/KeyMap.h"

#include "Platform/Input/KeyEvent.h"

#include <algorithm>
#include <array>

#include <xkbcommon/xkbcommon.h>

namespace platform::desktop {

namespace {

struct VirtualKey {
    int code;
    xkb_keysym_t symbol;
};

constexpr auto virtualKeys = std::to_array<VirtualKey>({
    {key::a, XKB_KEY_a},
    {key::c, XKB_KEY_c},
    {key::v, XKB_KEY_v},
    {key::escape, XKB_KEY_Escape},
    {key::rightArrow, XKB_KEY_Right},
});

// Locks are no modifiers in this sense: no key has to be held for them, and shortcuts do not mind them.
constexpr auto modifierSymbols = std::to_array<xkb_keysym_t>({
    XKB_KEY_Shift_L,
    XKB_KEY_Shift_R,
    XKB_KEY_Control_L,
    XKB_KEY_Control_R,
    XKB_KEY_Alt_L,
    XKB_KEY_Alt_R,
    XKB_KEY_Meta_L,
    XKB_KEY_Meta_R,
    XKB_KEY_Super_L,
    XKB_KEY_Super_R,
    XKB_KEY_Hyper_L,
    XKB_KEY_Hyper_R,
    XKB_KEY_ISO_Level3_Shift,
    XKB_KEY_ISO_Level5_Shift,
    XKB_KEY_Mode_switch,
});

// What the key types in a group with no modifier held.
xkb_keysym_t plainSymbol(xkb_keymap* map, xkb_keycode_t code, xkb_layout_index_t group) {
    const xkb_keysym_t* symbols = nullptr;
    int count = xkb_keymap_key_get_syms_by_level(map, code, group, 0, &symbols);
    return count == 1 ? symbols[0] : xkb_keysym_t{XKB_KEY_NoSymbol};
}

} // namespace

void KeyMap::Release::operator()(xkb_keymap* owned) const noexcept {
    xkb_keymap_unref(owned);
}

KeyMap::KeyMap(xkb_keymap* keymap) : map(keymap) {
    functionKey_ = keyTyping(XKB_KEY_XF86Fn, std::nullopt);
    if (!functionKey_)
        functionKey_ = keyTyping(XKB_KEY_Control_R, std::nullopt);
    if (!functionKey_)
        functionKey_ = keyNamed("RCTL");
    controlKey_ = keyTyping(XKB_KEY_Control_L, std::nullopt);
    shiftKey_ = keyTyping(XKB_KEY_Shift_L, std::nullopt);
    insertKey_ = keyTyping(XKB_KEY_Insert, std::nullopt);
    endKey_ = keyTyping(XKB_KEY_End, std::nullopt);
    for (auto code = xkb_keymap_min_keycode(map.get()); code <= xkb_keymap_max_keycode(map.get()); ++code) {
        for (xkb_layout_index_t group = 0; group < xkb_keymap_num_layouts_for_key(map.get(), code); ++group) {
            if (std::ranges::find(modifierSymbols, plainSymbol(map.get(), code, group))
                != modifierSymbols.end()) {
                modifierKeys_.push_back(static_cast<KeyCode>(code));
                break;
            }
        }
    }
}

std::optional<KeyCode> KeyMap::keyFor(int virtualKey, std::uint32_t group) const {
    const auto* known = std::ranges::find(virtualKeys, virtualKey, &VirtualKey::code);
    if (known == virtualKeys.end())
        return std::nullopt;
    if (auto inGroup = keyTyping(known->symbol, group))
        return inGroup;
    return keyTyping(known->symbol, std::nullopt);
}

std::optional<std::uint32_t> KeyMap::groupTyping(int virtualKey) const {
    const auto* known = std::ranges::find(virtualKeys, virtualKey, &VirtualKey::code);
    for (std::uint32_t group = 0; known != virtualKeys.end() && group < xkb_keymap_num_layouts(map.get());
         ++group)
        if (keyTyping(known->symbol, group))
            return group;
    return std::nullopt;
}

bool KeyMap::types(KeyCode code, std::uint32_t symbol) const {
    return plainSymbol(map.get(), code, 0) == symbol;
}

std::vector<std::uint32_t> KeyMap::missingSymbols() const {
    std::vector<std::uint32_t> result;
    for (const auto& known : virtualKeys) {
        if (!keyTyping(known.symbol, std::nullopt))
            result.push_back(known.symbol);
    }
    return result;
}

std::vector<KeyCode> KeyMap::unusedKeys() const {
    std::vector<KeyCode> result;
    for (auto code = xkb_keymap_min_keycode(map.get()); code <= xkb_keymap_max_keycode(map.get()); ++code) {
        if (xkb_keymap_num_layouts_for_key(map.get(), code) == 0)
            result.push_back(static_cast<KeyCode>(code));
    }
    return result;
}

std::optional<int> KeyMap::virtualKeyOf(KeyCode code) const {
    for (xkb_layout_index_t group = 0; group < xkb_keymap_num_layouts_for_key(map.get(), code); ++group) {
        auto symbol = plainSymbol(map.get(), code, group);
        const auto* known = std::ranges::find(virtualKeys, symbol, &VirtualKey::symbol);
        if (known != virtualKeys.end())
            return known->code;
    }
    return std::nullopt;
}

std::optional<KeyCode> KeyMap::keyTyping(std::uint32_t symbol, std::optional<std::uint32_t> group) const {
    for (auto code = xkb_keymap_min_keycode(map.get()); code <= xkb_keymap_max_keycode(map.get()); ++code) {
        auto groups = xkb_keymap_num_layouts_for_key(map.get(), code);
        auto first = group.value_or(0);
        auto end = group ? *group + 1 : groups;
        for (auto candidate = first; groups > 0 && candidate < end; ++candidate) {
            if (plainSymbol(map.get(), code, candidate) == symbol)
                return static_cast<KeyCode>(code);
        }
    }
    return std::nullopt;
}

std::optional<KeyCode> KeyMap::keyNamed(const char* name) const {
    auto code = xkb_keymap_key_by_name(map.get(), name);
    return code == XKB_KEYCODE_INVALID ? std::nullopt : std::optional(static_cast<KeyCode>(code));
}

} // namespace platform::desktop
