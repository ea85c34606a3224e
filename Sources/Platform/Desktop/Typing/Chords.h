#pragma once

#include "Platform/Desktop/Typing/KeyMap.h"
#include "Platform/Desktop/Typing/PostedKeys.h"
#include "Platform/Desktop/Typing/TerminalKeys.h"
#include "Platform/Input/KeyEvent.h"

namespace platform::desktop {

// A key, and the modifier keys that are held with it.
struct Chord {
    KeyCode key;
    std::vector<KeyCode> modifiers;
};

// What the event makes an application do with the clipboard.
ClipboardEffect effectOf(const KeyEvent& event);

// What to type for the event in an ordinary application; Command is Control. Nothing where the map lacks a
// key.
std::optional<Chord> chordFor(const KeyEvent& event, const KeyMap& map, std::uint32_t group);

// The same in a terminal: copy and paste alone, and only where nothing can be interrupted by it.
std::optional<Chord> chordInTerminal(TerminalKeys keys, const KeyEvent& event, const KeyMap& map,
                                     std::uint32_t group);

} // namespace platform::desktop
