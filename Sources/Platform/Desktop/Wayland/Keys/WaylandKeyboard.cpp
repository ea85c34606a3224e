#include "Platform/Desktop/Wayland/Keys/WaylandKeyboard.h"

#include "Platform/Foundation/Sleep.h"

#include <array>

namespace platform::desktop {
namespace {

using namespace std::chrono_literals;

constexpr auto activationLimit = 1s;
constexpr auto lookAgainAfter = 5ms;

// Applications know these as well as the letters.
std::optional<Chord> chordAnywhere(const KeyEvent& event, const KeyMap& map, std::uint32_t group) {
    const auto effect = effectOf(event);
    if (effect == ClipboardEffect::none)
        return chordFor(event, map, group);
    const auto modifier = effect == ClipboardEffect::copy ? map.controlKey() : map.shiftKey();
    if (!map.insertKey() || !modifier)
        return std::nullopt;
    return Chord{*map.insertKey(), {*modifier}};
}

} // namespace

// The whole combination is typed with its key-down event; the key-up event adds nothing.
Task<void> WaylandKeyboard::post(KeyEvent event) {
    co_await ignoreCancellation();
    const auto map = typist.keyMap();
    if (event.type != EventType::keyDown || !map)
        co_return;
    const bool isReceived = co_await isReceiving();
    if (!isReceived)
        co_return;
    const auto front = toplevels.front();
    const auto group = map->groupTyping(event.keyCode).value_or(0);
    auto chord = std::optional<Chord>();
    if (!front)
        chord = chordAnywhere(event, *map, group);
    else if (const auto terminal = terminalKeysOf(std::array{front->application}))
        chord = chordInTerminal(*terminal, event, *map, group);
    else
        chord = desktop::chordFor(event, *map, group);
    if (!chord)
        co_return;
    postedKeys.record(effectOf(event), front ? front->number : 0);
    co_await typist.type(*chord, group);
    postedKeys.reportTyped();
}

// Another window's text would be overwritten.
Task<bool> WaylandKeyboard::isReceiving() const {
    const auto target = postedKeys.target();
    while (target) {
        const auto front = toplevels.front();
        if (front && front->number == target->window)
            break;
        if (std::chrono::steady_clock::now() >= target->time + activationLimit)
            co_return false;
        co_await sleep(lookAgainAfter);
    }
    co_return true;
}

} // namespace platform::desktop
