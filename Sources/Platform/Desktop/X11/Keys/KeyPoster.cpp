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

// An input method would move in the letters it has; all would stay selected, and go when they end.
std::optional<Chord> KeyPoster::chordFor(const KeyEvent& event, const KeyMap& map,
                                         std::uint32_t group) const {
    if (event.flags == 0 && event.keyCode == key::rightArrow && map.endKey() && map.controlKey()
        && isComposing(x))
        return Chord{*map.endKey(), {*map.controlKey()}};
    return desktop::chordFor(event, map, group);
}

} // namespace platform::desktop
