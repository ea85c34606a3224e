#include "Platform/Desktop/Typing/Chords.h"

namespace platform::desktop {

ClipboardEffect effectOf(const KeyEvent& event) {
    if (event.flags != flag::command)
        return ClipboardEffect::none;
    if (event.keyCode == key::c)
        return ClipboardEffect::copy;
    return event.keyCode == key::v ? ClipboardEffect::paste : ClipboardEffect::none;
}

std::optional<Chord> chordFor(const KeyEvent& event, const KeyMap& map, std::uint32_t group) {
    auto code = map.keyFor(event.keyCode, group);
    if (!code)
        return std::nullopt;
    if ((event.flags & flag::command) == 0)
        return Chord{*code, {}};
    if (!map.controlKey())
        return std::nullopt;
    return Chord{*code, {*map.controlKey()}};
}

std::optional<Chord> chordInTerminal(TerminalKeys keys, const KeyEvent& event, const KeyMap& map,
                                     std::uint32_t group) {
    auto effect = effectOf(event);
    if (effect == ClipboardEffect::none || keys == TerminalKeys::none || !map.controlKey() || !map.shiftKey())
        return std::nullopt;
    std::vector<KeyCode> control{*map.controlKey()};
    std::vector<KeyCode> controlShift{*map.controlKey(), *map.shiftKey()};
    if (keys == TerminalKeys::insert) {
        if (!map.insertKey())
            return std::nullopt;
        return Chord{*map.insertKey(), effect == ClipboardEffect::copy ? control : controlShift};
    }
    auto code = map.keyFor(event.keyCode, group);
    return code ? std::optional(Chord{*code, controlShift}) : std::nullopt;
}

} // namespace platform::desktop
