#pragma once

#include "Platform/Desktop/XConnection.h"

#include <xcb/xinput.h>

namespace tests {

enum class KeyboardKind {
    // It stands before the X server, as far as the server can tell.
    physical,
    // Programs type on it, those that carry a remote user's keys too.
    ofPrograms,
};

// One of the X server's keyboards. Throws where there is none.
class TestKeyboard {
public:
    explicit TestKeyboard(KeyboardKind kind = KeyboardKind::physical);

    // Returns when the server has it.
    void change(int code, bool isPress) const;

    platform::desktop::XConnection x;

private:
    std::uint8_t pressEvent = XCB_KEY_PRESS;
    std::uint8_t device = 0;
};

} // namespace tests
