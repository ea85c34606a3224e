#pragma once

#include "Desktop/DisplayProcess.h"
#include "Desktop/TestKeyboard.h"

#include <initializer_list>

namespace tests {

// Places on the keyboard, by their codes in the usual maps.
enum class Key : std::uint8_t {
    escape = 9,
    enter = 36,
    leftControl = 37,
    s = 39,
    leftShift = 50,
    x = 53,
    n = 57,
    capsLock = 66,
    rightControl = 105,
    home = 110,
    right = 114,
};

// Somebody at the keyboard of the display.
class Person {
public:
    explicit Person(KeyboardKind kind = KeyboardKind::physical) : keyboard(kind) {}

    // The time just before the server gets it.
    Clock::time_point press(Key key) { return change(key, true); }
    Clock::time_point release(Key key) { return change(key, false); }

    // The modifier keys first.
    void strike(std::initializer_list<Key> keys);

private:
    Clock::time_point change(Key key, bool isPress);

    TestKeyboard keyboard;
};

} // namespace tests
