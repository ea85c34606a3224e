#pragma once

#include "Platform/Desktop/Typing/KeyMap.h"
#include "Platform/Desktop/X11/Server/XConnection.h"

#include <bitset>
#include <deque>
#include <mutex>
#include <set>

#include <xcb/xinput.h>

namespace platform::desktop {

// Types on the user's behalf, and keeps account of which key events are the user's own and which were made
// here. Any thread.
class KeyInjector {
public:
    // Types on `events`; `display` is read by nobody and answers sooner.
    KeyInjector(const XConnection& events, const XConnection& display) : x(events), questions(display) {}

    // Presses and releases a key with exactly these modifier keys held; others are lifted meanwhile and put
    // back if the user still holds them. All in one go: nothing can stay pressed half-way.
    void type(KeyCode code, const std::vector<KeyCode>& modifiers, const KeyMap& map);

    // Makes applications believe that a key the user holds is up.
    void lift(KeyCode code);

    // Gives applications the press of a key that the user holds and that they have not heard of.
    void pressAgain(KeyCode code);

    // From here on every key event that the connection hears of must be given to `isFromUser`.
    void startAccount();
    void endAccount();

    // What an event says of a key, and the number of the request before it.
    struct Change {
        std::uint32_t sequence;
        KeyCode code;
        bool isPress;

        bool operator==(const Change&) const = default;
    };

    // Whether the user did this, on `device` where that is known, and not one of the operations above.
    bool isFromUser(const Change& change, std::optional<xcb_input_device_id_t> device = std::nullopt);

private:
    void make(KeyCode code, bool isPress);
    void finish();
    bool wasMadeHere(const Change& change);

    const XConnection& x;
    const XConnection& questions;
    std::mutex mutex;
    bool keepsAccount = false;
    std::deque<Change> made;
    // The keyboard that the user types on, for this to type on it too: whenever another one types than
    // before, the server gives every program that one's map, which takes them all some milliseconds, and may
    // be another map.
    std::optional<xcb_input_device_id_t> usersDevice;
    std::bitset<256> heldByUser;
    // Keys the user holds that were lifted and pressed again here. The user's release does not reach this
    // press.
    std::set<KeyCode> putBack;
};

} // namespace platform::desktop
