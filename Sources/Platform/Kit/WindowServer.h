#pragma once

#include "Platform/Kit/Color.h"
#include "Platform/Kit/Font.h"
#include "Platform/Kit/Screen.h"

#include <string_view>

namespace platform {

class Window;

// The part of a machine that windows are shown by. It draws a shown window at a time t from
// `window.presentation(t)`, when it is put in front, when it needs display, and then as long and as often as
// `window.nextChange(t)` says that something moves; at rest it does nothing. Main thread.
class WindowServer {
public:
    virtual ~WindowServer() = default;

    virtual std::optional<Screen> mainScreen() = 0;

    // Shows the window before the others of its level, without activating the program or moving the focus.
    // One that is shown already only comes to the front. It may be kept by reference until it is ordered out,
    // which a window is at the end of its life.
    virtual void orderFront(Window& window) = 0;
    virtual void orderOut(Window& window) = 0;
    // Gives a shown window the keyboard.
    virtual void makeKey(Window& window) = 0;

    // A shown window is to be drawn at the next opportunity. Comes at each of many changes: it only takes
    // note.
    virtual void setNeedsDisplay(Window& window) = 0;

    // The extent of the text as one line: its advance, and the height of the font's lines.
    virtual Size measure(std::string_view text, const Font& font) = 0;

    // One of the theme's colours in components. All shown windows are drawn anew when the theme changes.
    virtual Color color(SystemColor name) = 0;
};

} // namespace platform
