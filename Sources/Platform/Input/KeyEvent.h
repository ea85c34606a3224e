#pragma once

#include <cstdint>

namespace platform {

enum class EventType : std::uint32_t {
    keyDown = 10,
    keyUp = 11,
    flagsChanged = 12,
    // Not of the keyboard: the system has switched the tap off.
    tapDisabledByTimeout = 0xFFFFFFFE,
    tapDisabledByUserInput = 0xFFFFFFFF,
};

// A set of event types: the bit of a type's raw value.
using EventMask = std::uint64_t;

// Notices that a tap is off have no bit: they come whatever was asked for.
constexpr EventMask maskOf(EventType type) {
    const auto bit = static_cast<std::uint32_t>(type);
    return bit < 64 ? EventMask{1} << bit : 0;
}

// Modifier keys, as bits of an event's flags.
namespace flag {
inline constexpr std::uint64_t command = 0x100000;
inline constexpr std::uint64_t secondaryFn = 0x800000;
} // namespace flag

// Virtual key codes: places on the keyboard, whatever its layout; letters are those that type the letter.
namespace key {
inline constexpr int a = 0;
inline constexpr int c = 8;
inline constexpr int v = 9;
inline constexpr int escape = 53;
inline constexpr int function = 63;
inline constexpr int rightArrow = 124;
} // namespace key

struct KeyEvent {
    EventType type;
    int keyCode;
    std::uint64_t flags = 0;
};

} // namespace platform
