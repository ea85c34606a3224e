#pragma once

#include "Platform/Desktop/Typing/Chords.h"
#include "Platform/Foundation/Task.h"

namespace platform::desktop {

// Types on the user's behalf by one of the means that sessions offer. Any thread.
class Typist {
public:
    virtual ~Typist() = default;

    // What chords are looked up in, as it is now.
    virtual std::shared_ptr<const KeyMap> keyMap() const = 0;

    // Presses and releases the chord, of a group of that map, as a whole. Done once the compositor has it.
    virtual Task<void> type(Chord chord, std::uint32_t group) = 0;
};

} // namespace platform::desktop
