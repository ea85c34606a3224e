#pragma once

#include "Platform/Foundation/Text.h"
#include "Platform/Kit/Window.h"
#include "Platform/Kit/WindowServer.h"

#include <algorithm>
#include <set>

namespace platform::headless {

// A window server that remembers what is shown on its one screen. What a window looks like at a time is the
// window's to tell.
class HeadlessWindowServer : public WindowServer {
public:
    std::optional<Screen> screen = Screen{{0, 0, 1440, 900}, {0, 0, 1440, 875}, 2};
    // The windows that are shown, the front one last.
    std::vector<Window*> shown;
    // The one that has the keyboard.
    Window* key = nullptr;
    // Those that are to be drawn; a test takes them out when it has.
    std::set<Window*> needingDisplay;

    std::optional<Screen> mainScreen() override { return screen; }

    void orderFront(Window& window) override {
        std::erase(shown, &window);
        const auto above =
            std::ranges::find_if(shown, [&](const Window* other) { return other->level > window.level; });
        shown.insert(above, &window);
        needingDisplay.insert(&window);
    }

    void orderOut(Window& window) override {
        std::erase(shown, &window);
        needingDisplay.erase(&window);
        if (key == &window)
            key = nullptr;
    }

    void makeKey(Window& window) override { key = &window; }

    void setNeedsDisplay(Window& window) override { needingDisplay.insert(&window); }

    // Every character as a reader sees it is as wide as any other: 10 points at a size of 14.
    Size measure(std::string_view text, const Font& font) override {
        return {static_cast<double>(text::characterCount(text)) * font.size * 10 / 14, font.size * 1.2};
    }

    // Greys, each of its own.
    Color color(SystemColor name) override { return Color::white(0.1 * static_cast<int>(name), 1); }
};

} // namespace platform::headless
