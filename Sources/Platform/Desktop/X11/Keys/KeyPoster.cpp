#include "Platform/Desktop/X11/Keys/KeyPoster.h"

#include "Platform/Desktop/Applications/ProgramName.h"
#include "Platform/Desktop/X11/Keys/InputMethod.h"
#include "Platform/Desktop/X11/Server/ActiveWindow.h"
#include "Platform/Foundation/Sleep.h"

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

Task<void> KeyPoster::type(KeyEvent event, std::shared_ptr<const KeyMap> map, std::uint32_t group) {
    auto window = co_await receivingWindow();
    if (!window)
        co_return;
    auto terminal = terminalKeysOf(*window);
    auto chord = terminal ? chordInTerminal(*terminal, event, *map, group) : chordFor(event, *map, group);
    if (!chord)
        co_return;
    // First: the application may answer before the call below returns.
    postedKeys.record(effectOf(event), *window);
    injector.type(chord->key, chord->modifiers, *map);
    postedKeys.reportTyped();
}

// Another window's text would be overwritten.
Task<std::optional<xcb_window_t>> KeyPoster::receivingWindow() const {
    const auto target = postedKeys.target();
    auto window = activeWindow(x);
    while (target && window != target->window) {
        if (std::chrono::steady_clock::now() >= target->time + activationLimit)
            co_return std::nullopt;
        co_await sleep(lookAgainAfter);
        window = activeWindow(x);
    }
    co_return window;
}

std::optional<TerminalKeys> KeyPoster::terminalKeysOf(xcb_window_t window) {
    if (window == XCB_NONE)
        return std::nullopt;
    auto windowClass = windowClassOf(x, window);
    std::lock_guard lock(mutex);
    if (!last || last->window != window || last->windowClass != windowClass)
        last = LastWindow{window, windowClass, desktop::terminalKeysOf(namesOf(window, windowClass))};
    return last->terminal;
}

std::vector<std::string> KeyPoster::namesOf(xcb_window_t window, const WindowClass& windowClass) const {
    std::vector<std::string> names{windowClass.name, windowClass.instance};
    if (auto process = claimedProcessOf(x, window)) {
        if (auto program = programOf(*process))
            names.push_back(*program);
    }
    return names;
}

std::optional<KeyPoster::Chord> KeyPoster::chordFor(const KeyEvent& event, const KeyMap& map,
                                                    std::uint32_t group) const {
    auto code = map.keyFor(event.keyCode, group);
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
                                                           const KeyMap& map, std::uint32_t group) const {
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
    auto code = map.keyFor(event.keyCode, group);
    return code ? std::optional(Chord{*code, controlShift}) : std::nullopt;
}

} // namespace platform::desktop
