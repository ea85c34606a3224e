#pragma once

#include "Models/RawValue.h"

namespace lumarin {

// The phase of the one translation session there can be. `confirmed` and `reverted` are for observers to have
// an icon for; a session does not enter them.
enum class TranslationState { idle, reading, translating, preview, confirmed, reverted };

// The tone of a translation.
enum class StylePreset { formal, casual, friendly, direct };

template <>
struct RawValues<StylePreset> {
    static constexpr auto texts = std::to_array<std::string_view>({"formal", "casual", "friendly", "direct"});
};

// The state's name, for the log.
constexpr std::string_view caseName(TranslationState state) {
    constexpr auto names = std::to_array<std::string_view>(
        {"idle", "reading", "translating", "preview", "confirmed", "reverted"});
    return names[static_cast<std::size_t>(state)];
}

} // namespace lumarin
