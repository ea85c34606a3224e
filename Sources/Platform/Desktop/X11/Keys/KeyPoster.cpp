#include "Platform/Desktop/X11/Keys/KeyPoster.h"

#include "Platform/Desktop/X11/Keys/InputMethod.h"

#include <thread>

namespace platform::desktop {

namespace {

using namespace std::chrono_literals;

// A window manager that is busy takes its time to bring a window to the front.
constexpr auto activationLimit = 1s;
constexpr auto lookAgainAfter = 5ms;

ClipboardEffect effectOf(const KeyEvent& event) {
    if (event.flags != flag::command)
        return ClipboardEffect::none;
    if (event.keyCode == key::c)
        return ClipboardEffect::copy;
    return event.keyCode == key::v ? ClipboardEffect::paste : ClipboardEffect::none;
}

} // namespace

void KeyPoster::post(const KeyEvent& event, const KeyMap& map) {
    if (event.type != EventType::keyDown)
        return;
    auto window = receivingWindow();
    if (!window)
        return;
    auto terminal = terminalKeysOf(*window);
    auto chord = terminal ? chordInTerminal(*terminal, event, map) : chordFor(event, map);
    if (!chord)
        return;
    // First: the application may answer before the call below returns.
    postedKeys.record(effectOf(event), *window);
    injector.type(chord->key, chord->modifiers, map);
    postedKeys.reportTyped();
}

// Another window's text would be overwritten.
std::optional<xcb_window_t> KeyPoster::receivingWindow() const {
    const auto target = postedKeys.target();
    auto window = activeWindow(x);
    while (target && window != target->window) {
        if (std::chrono::steady_clock::now() >= target->time + activationLimit)
            return std::nullopt;
        std::this_thread::sleep_for(lookAgainAfter);
        window = activeWindow(x);
    }
    return window;
}

std::optional<TerminalKeys> KeyPoster::terminalKeysOf(xcb_window_t window) {
    if (window == XCB_NONE)
        return std::nullopt;
    auto windowClass = windowClassOf(x, window);
    std::lock_guard lock(mutex);
    if (!last || last->window != window || last->windowClass != windowClass)
        last = FrontWindow{window, windowClass, desktop::terminalKeysOf(namesOf(window, windowClass))};
    return last->terminal;
}

std::vector<std::string> KeyPoster::namesOf(xcb_window_t window, const WindowClass& windowClass) const {
    std::vector<std::string> names{windowClass.name, windowClass.instance};
    if (auto process = processOf(x, window)) {
        if (auto program = programOf(*process))
            names.push_back(*program);
    }
    return names;
}

std::optional<KeyPoster::Chord> KeyPoster::chordFor(const KeyEvent& event, const KeyMap& map) const {
    auto code = map.keyFor(event.keyCode, map.currentGroup());
    if (!code)
        return std::nullopt;
    if ((event.flags & flag::command) == 0) {
        // An input method would move in the letters it has; all would stay selected, and go when they end.
        if (event.keyCode == key::rightArrow && map.endKey() && map.controlKey() && isComposing(x))
            return Chord{*map.endKey(), {*map.controlKey()}};
        return Chord{*code, {}};
    }
    if (!map.controlKey())
        return std::nullopt;
    return Chord{*code, {*map.controlKey()}};
}

std::optional<KeyPoster::Chord> KeyPoster::chordInTerminal(TerminalKeys keys, const KeyEvent& event,
                                                           const KeyMap& map) const {
    auto effect = effectOf(event);
    if (effect == ClipboardEffect::none || keys == TerminalKeys::none || !map.controlKey() || !map.shiftKey())
        return std::nullopt;
    std::vector<KeyCode> control{*map.controlKey()};
    std::vector<KeyCode> controlShift{*map.controlKey(), *map.shiftKey()};
    if (keys == TerminalKeys::insert) {
        if (!map.insertKey())
            return std::nullopt;
        return Chord{*map.insertKey(), effect == ClipboardEffect::copy ? control : controlShift};
    }
    auto code = map.keyFor(event.keyCode, map.currentGroup());
    return code ? std::optional(Chord{*code, controlShift}) : std::nullopt;
}

} // namespace platform::desktop
