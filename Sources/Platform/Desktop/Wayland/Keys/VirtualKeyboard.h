#pragma once

#include "Platform/Desktop/Typing/Typist.h"
#include "Platform/Desktop/Wayland/Server/CompositorThread.h"

#include <mutex>

namespace platform::desktop {

// Types with a virtual keyboard of the compositor's. It has the keymap of the seat's own keyboard, since
// every program is told of another one when it is typed on; where no key of that has the Latin letters, it
// has one of its own.
class VirtualKeyboard : public Typist {
public:
    static bool isOffered(const WaylandConnection& wayland);

    // The thread is not started yet, and ends before this. Throws WaylandError.
    explicit VirtualKeyboard(CompositorThread& compositorThread);

    std::shared_ptr<const KeyMap> keyMap() const override;
    Task<void> type(Chord chord, std::uint32_t group) override;

private:
    void takeKeyMap(int file, std::uint32_t size);
    void use(const std::string& text);
    void press(KeyCode code, bool isPressed) const;

    CompositorThread& thread;
    WaylandOwned<wl_seat> seat;
    WaylandOwned<wl_keyboard> seatKeyboard;
    WaylandOwned<zwp_virtual_keyboard_manager_v1> manager;
    WaylandOwned<zwp_virtual_keyboard_v1> keyboard;
    std::string seatMap;
    mutable std::mutex mutex;
    std::shared_ptr<const KeyMap> map;
};

} // namespace platform::desktop
