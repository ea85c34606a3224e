#pragma once

#include "Platform/Desktop/X11/Server/XConnection.h"
#include "Support/ComesTrue.h"

#include <initializer_list>

namespace tests {

// Places on an ordinary keyboard, by their codes.
struct Key {
    static constexpr int escape = 9;
    static constexpr int q = 24;
    static constexpr int enter = 36;
    static constexpr int leftControl = 37;
    static constexpr int s = 39;
    static constexpr int leftShift = 50;
    static constexpr int x = 53;
    static constexpr int c = 54;
    static constexpr int n = 57;
    static constexpr int leftAlt = 64;
    static constexpr int capsLock = 66;
    static constexpr int f12 = 96;
    static constexpr int rightControl = 105;
    static constexpr int home = 110;
    static constexpr int right = 114;
    static constexpr int end = 115;
    static constexpr int insert = 118;
};

enum class KeyboardKind {
    // It stands before the X server, as far as the server can tell.
    physical,
    // Programs type on it, those that carry a remote user's keys too.
    ofPrograms,
};

// Somebody at one of the display's keyboards. Throws where there is none of the kind.
class Person {
public:
    explicit Person(KeyboardKind kind = KeyboardKind::physical);

    // Both return when the server has it, and give the time just before.
    Clock::time_point press(int key) const { return change(key, true); }
    Clock::time_point release(int key) const { return change(key, false); }

    // The modifier keys first.
    void strike(std::initializer_list<int> keys) const;

    // Plugs the keyboard in or out, as far as the server can tell.
    void switchDevice(bool isOn) const;

    // What is held on all keyboards.
    std::vector<int> keysDown() const;

private:
    Clock::time_point change(int key, bool isPress) const;

    platform::desktop::XConnection x;
    std::uint8_t pressEvent = XCB_KEY_PRESS;
    std::uint8_t device = 0;
};

} // namespace tests
