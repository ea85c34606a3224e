#include "Platform/Desktop/Wayland/Keys/VirtualKeyboard.h"

#include "Platform/Foundation/Release.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>

#include <sys/mman.h>
#include <unistd.h>
#include <xkbcommon/xkbcommon.h>

namespace platform::desktop {
namespace {

using Context = std::unique_ptr<xkb_context, Release<xkb_context_unref>>;
using Keymap = std::unique_ptr<xkb_keymap, Release<xkb_keymap_unref>>;

// These have the same places in every map.
constexpr std::uint32_t shiftBit = 1U << 0U;
constexpr std::uint32_t controlBit = 1U << 2U;

// The kernel counts eight less.
constexpr std::uint32_t kernelOffset = 8;

constexpr auto lettersTyped = {key::a, key::c, key::v};

Keymap compiled(const std::string& text) {
    const Context context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    return Keymap(xkb_keymap_new_from_string(context.get(), text.c_str(), XKB_KEYMAP_FORMAT_TEXT_V1,
                                             XKB_KEYMAP_COMPILE_NO_FLAGS));
}

Keymap latinKeymap() {
    const Context context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    const xkb_rule_names names{"evdev", "pc105", "us", "", ""};
    return Keymap(xkb_keymap_new_from_names(context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
}

bool hasLetters(const KeyMap& map) {
    return std::ranges::all_of(lettersTyped, [&](int letter) { return map.groupTyping(letter).has_value(); });
}

std::string textOf(xkb_keymap& map) {
    const std::unique_ptr<char, Release<std::free>> text(
        xkb_keymap_get_as_string(&map, XKB_KEYMAP_FORMAT_TEXT_V1));
    return text ? text.get() : "";
}

std::uint32_t now() {
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(
                                          std::chrono::steady_clock::now().time_since_epoch())
                                          .count());
}

// Nothing is written on a surface here: of all that a keyboard tells, the map alone comes.
constexpr wl_keyboard_listener mapListener(decltype(wl_keyboard_listener::keymap) keymap) {
    return {
        keymap,
        [](void*, wl_keyboard*, std::uint32_t, wl_surface*, wl_array*) {},
        [](void*, wl_keyboard*, std::uint32_t, wl_surface*) {},
        [](void*, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t) {},
        [](void*, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t) {},
        [](void*, wl_keyboard*, std::int32_t, std::int32_t) {}};
}

} // namespace

bool VirtualKeyboard::isOffered(const WaylandConnection& wayland) {
    return wayland.offers(zwp_virtual_keyboard_manager_v1_interface) && wayland.offers(wl_seat_interface);
}

VirtualKeyboard::VirtualKeyboard(CompositorThread& compositorThread)
    : thread(compositorThread),
      seat(thread.connection().bind<wl_seat>(wl_seat_interface, 1)),
      manager(thread.connection().bind<zwp_virtual_keyboard_manager_v1>(
          zwp_virtual_keyboard_manager_v1_interface, 1)) {
    if (!seat || !manager)
        throw WaylandError("The compositor has no virtual keyboard for Lumarin.");
    static constexpr wl_seat_listener seatListener{
        [](void* self, wl_seat* told, std::uint32_t capabilities) {
            auto& typist = *static_cast<VirtualKeyboard*>(self);
            if ((capabilities & WL_SEAT_CAPABILITY_KEYBOARD) == 0 || typist.seatKeyboard)
                return;
            typist.seatKeyboard.reset(wl_seat_get_keyboard(told));
            static constexpr auto keyboardListener = mapListener(
                [](void* owner, wl_keyboard*, std::uint32_t format, std::int32_t file, std::uint32_t size) {
                    if (format == WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1)
                        static_cast<VirtualKeyboard*>(owner)->takeKeyMap(file, size);
                    close(file);
                });
            wl_keyboard_add_listener(typist.seatKeyboard.get(), &keyboardListener, self);
        },
        [](void*, wl_seat*, const char*) {}};
    wl_seat_add_listener(seat.get(), &seatListener, this);
    // What the seat can do, and then its map.
    thread.connection().roundTrip();
    thread.connection().roundTrip();
    keyboard.reset(zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(manager.get(), seat.get()));
    use(seatMap);
    thread.connection().roundTrip();
    if (thread.connection().isBroken())
        throw WaylandError("The compositor does not let Lumarin have a virtual keyboard.");
}

std::shared_ptr<const KeyMap> VirtualKeyboard::keyMap() const {
    std::lock_guard lock(mutex);
    return map;
}

void VirtualKeyboard::takeKeyMap(int file, std::uint32_t size) {
    void* const mapped = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0);
    if (mapped == MAP_FAILED)
        return;
    // It ends with a zero.
    std::string text(static_cast<const char*>(mapped), strnlen(static_cast<const char*>(mapped), size));
    munmap(mapped, size);
    // The seat tells of the virtual keyboard's own map as well, once it is typed on.
    if (text == seatMap)
        return;
    seatMap = std::move(text);
    if (keyboard)
        use(seatMap);
}

void VirtualKeyboard::use(const std::string& text) {
    auto keymap = text.empty() ? nullptr : compiled(text);
    auto read = keymap ? std::make_shared<const KeyMap>(xkb_keymap_ref(keymap.get())) : nullptr;
    const bool isSeats = read && hasLetters(*read);
    if (!isSeats) {
        keymap = latinKeymap();
        if (!keymap)
            return;
        read = std::make_shared<const KeyMap>(xkb_keymap_ref(keymap.get()));
    }
    const auto uploaded = isSeats ? text : textOf(*keymap);
    const int file = memfd_create("keymap", MFD_CLOEXEC);
    if (file < 0 || write(file, uploaded.c_str(), uploaded.size() + 1) < 0)
        return;
    zwp_virtual_keyboard_v1_keymap(keyboard.get(), WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, file,
                                   static_cast<std::uint32_t>(uploaded.size() + 1));
    close(file);
    std::lock_guard lock(mutex);
    map = std::move(read);
}

Task<void> VirtualKeyboard::type(Chord chord, std::uint32_t group) {
    co_await resumeOn(thread);
    const auto present = keyMap();
    std::uint32_t held = 0;
    for (const auto modifier : chord.modifiers) {
        held |= modifier == present->shiftKey() ? shiftBit : controlBit;
        press(modifier, true);
        zwp_virtual_keyboard_v1_modifiers(keyboard.get(), held, 0, 0, group);
    }
    if (held == 0)
        zwp_virtual_keyboard_v1_modifiers(keyboard.get(), 0, 0, 0, group);
    press(chord.key, true);
    press(chord.key, false);
    for (const auto modifier : chord.modifiers)
        press(modifier, false);
    zwp_virtual_keyboard_v1_modifiers(keyboard.get(), 0, 0, 0, 0);
    co_await thread.settled();
}

void VirtualKeyboard::press(KeyCode code, bool isPressed) const {
    zwp_virtual_keyboard_v1_key(keyboard.get(), now(), code - kernelOffset,
                                isPressed ? WL_KEYBOARD_KEY_STATE_PRESSED : WL_KEYBOARD_KEY_STATE_RELEASED);
}

} // namespace platform::desktop
