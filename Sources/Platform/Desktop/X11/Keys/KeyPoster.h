#pragma once

#include "Platform/Desktop/Typing/Chords.h"
#include "Platform/Desktop/X11/Keys/KeyInjector.h"
#include "Platform/Desktop/X11/Server/WindowClass.h"
#include "Platform/Foundation/Task.h"

namespace platform::desktop {

// Turns the layer's key events into what the front application understands. Any thread.
class KeyPoster {
public:
    KeyPoster(const XConnection& display, KeyInjector& keyInjector, PostedKeys& record)
        : x(display), injector(keyInjector), postedKeys(record) {}

    // Types a combination as a whole, so that it is never left half-way, with the layout that is chosen. What
    // could interrupt a terminal's program is skipped, and what is meant for a window that doesn't get the
    // keyboard soon.
    Task<void> type(KeyEvent event, std::shared_ptr<const KeyMap> map, std::uint32_t group);

private:
    // What is known of the window that had the keyboard last. Its number alone may be another one's by now.
    struct LastWindow {
        xcb_window_t window;
        WindowClass windowClass;
        std::optional<TerminalKeys> terminal;
    };

    Task<std::optional<xcb_window_t>> receivingWindow() const;
    std::optional<TerminalKeys> terminalKeysOf(xcb_window_t window);
    std::vector<std::string> namesOf(xcb_window_t window, const WindowClass& windowClass) const;
    std::optional<Chord> chordFor(const KeyEvent& event, const KeyMap& map, std::uint32_t group) const;

    const XConnection& x;
    KeyInjector& injector;
    PostedKeys& postedKeys;
    std::mutex mutex;
    std::optional<LastWindow> last;
};

} // namespace platform::desktop
