#pragma once

#include "Platform/Kit/Color.h"
#include "Platform/Kit/Font.h"

#include <string>

namespace platform {

class Button;

enum class BezelStyle { rounded, inlined };

// What a button is to look like; whether it is pressed, pointed at or has the keyboard, the host knows.
// Value.
struct ButtonLook {
    std::string title;
    Font font;
    BezelStyle bezelStyle = BezelStyle::rounded;
    bool isBordered = true;
    bool isEnabled = true;
    // The one that Return presses.
    bool isDefault = false;
    // Of the title of a button without a border.
    Color tint = Color::system(SystemColor::label);
    // Tells one button from another; not to be followed.
    const Button* button = nullptr;

    bool operator==(const ButtonLook&) const = default;
};

} // namespace platform
