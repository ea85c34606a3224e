#include "Platform/Desktop/X11/Keys/SpareKeys.h"

namespace platform::desktop {

SpareKeys::~SpareKeys() {
    for (auto [code, symbol] : assigned)
        assign(code, XCB_NO_SYMBOL);
}

bool SpareKeys::provide(const KeyMap& map) {
    // The user may have chosen another map since.
    std::erase_if(assigned, [&](const auto& key) { return !map.types(key.first, key.second); });
    auto unused = map.unusedKeys();
    bool changed = false;
    for (auto symbol : map.missingSymbols()) {
        // From the end: keys of new keyboards take the lower ones.
        if (unused.empty() || !assign(unused.back(), symbol))
            break;
        assigned[unused.back()] = symbol;
        unused.pop_back();
        changed = true;
    }
    return changed;
}

bool SpareKeys::assign(KeyCode code, std::uint32_t symbol) const {
    return x.errorOf(xcb_change_keyboard_mapping_checked(x, 1, code, 1, &symbol)) == 0;
}

} // namespace platform::desktop
