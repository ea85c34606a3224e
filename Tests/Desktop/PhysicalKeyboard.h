#pragma once

#include "Platform/Desktop/XConnection.h"

#include <xcb/xinput.h>

namespace tests {

// The keyboard that stands before the X server, as far as the server can tell: not the one that programs type
// on. Throws where there is none.
class PhysicalKeyboard {
public:
    PhysicalKeyboard();

    // Returns when the server has it.
    void change(int code, bool isPress) const;

    platform::desktop::XConnection x;

private:
    std::uint8_t firstEvent;
    std::uint8_t device;
};

} // namespace tests
