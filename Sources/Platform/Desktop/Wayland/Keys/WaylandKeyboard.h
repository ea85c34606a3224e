#pragma once

#include "Platform/Desktop/Hold/HeldKey.h"
#include "Platform/Desktop/Typing/Typist.h"
#include "Platform/Desktop/Wayland/Keys/Toplevels.h"
#include "Platform/Input/Keyboard.h"

namespace platform::desktop {

// The keys of a session in which applications see no keys but their own: Fn is told by commands, and a typist
// types. Where it is not known which application is in front, copy and paste are typed as Control-Insert and
// Shift-Insert, which interrupt nothing in a terminal.
class WaylandKeyboard : public Keyboard {
public:
    WaylandKeyboard(HeldKey& heldKey, Typist& chosenTypist, const Toplevels& windows, PostedKeys& record)
        : held(heldKey), typist(chosenTypist), toplevels(windows), postedKeys(record) {}

    std::unique_ptr<EventTap> createEventTap(EventMask events, EventTap::Callback callback) override {
        return held.makeTap(events, std::move(callback));
    }
    std::unique_ptr<EventMonitor> addGlobalMonitor(EventMask events,
                                                   std::function<void(const KeyEvent&)> handler) override {
        return held.addMonitor(events, std::move(handler));
    }
    Task<void> post(KeyEvent event) override;

private:
    // Whether what is typed now goes to the window that it is for.
    Task<bool> isReceiving() const;

    HeldKey& held;
    Typist& typist;
    const Toplevels& toplevels;
    PostedKeys& postedKeys;
};

} // namespace platform::desktop
