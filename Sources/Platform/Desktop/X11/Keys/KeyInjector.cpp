#include "Platform/Desktop/X11/Keys/KeyInjector.h"

#include <xcb/xtest.h>

namespace platform::desktop {

namespace {

std::bitset<256> keysDown(const XConnection& x) {
    std::bitset<256> result;
    if (auto answer = x.reply(xcb_query_keymap_reply, xcb_query_keymap(x))) {
        for (std::size_t code = 0; code < result.size(); ++code)
            result[code] = (answer->keys[code / 8] >> (code % 8) & 1U) != 0;
    }
    return result;
}

} // namespace

void KeyInjector::type(KeyCode code, const std::vector<KeyCode>& modifiers, const KeyMap& map) {
    std::lock_guard lock(mutex);
    auto down = keysDown(questions);
    // Also where it is one of the modifiers: the user may be about to release it, and the key alone would be
    // typed over what is selected.
    std::vector<KeyCode> lifted;
    for (auto held : map.modifierKeys()) {
        if (down[held]) {
            make(held, false);
            lifted.push_back(held);
        }
    }
    // A key that is down already would not be pressed again.
    if (down[code])
        make(code, false);
    for (auto modifier : modifiers)
        make(modifier, true);
    make(code, true);
    make(code, false);
    for (auto modifier = modifiers.rbegin(); modifier != modifiers.rend(); ++modifier)
        make(*modifier, false);
    for (auto held : lifted) {
        putBack.erase(held);
        if (heldByUser[held]) {
            make(held, true);
            putBack.insert(held);
        }
    }
    finish();
}

void KeyInjector::lift(KeyCode code) {
    std::lock_guard lock(mutex);
    make(code, false);
    // Tells its event from those of the requests to come, as `finish` does, without waiting for the server.
    xcb_no_operation(x);
}

void KeyInjector::pressAgain(KeyCode code) {
    std::lock_guard lock(mutex);
    make(code, false);
    if (heldByUser[code]) {
        make(code, true);
        putBack.insert(code);
    }
    finish();
}

void KeyInjector::startAccount() {
    std::lock_guard lock(mutex);
    keepsAccount = true;
    heldByUser = keysDown(questions);
}

void KeyInjector::endAccount() {
    std::lock_guard lock(mutex);
    keepsAccount = false;
    made.clear();
    heldByUser.reset();
}

bool KeyInjector::isFromUser(const Change& change, std::optional<xcb_input_device_id_t> device) {
    std::lock_guard lock(mutex);
    if (wasMadeHere(change))
        return false;
    if (device && change.isPress)
        usersDevice = device;
    heldByUser[change.code] = change.isPress;
    if (!change.isPress && putBack.erase(change.code) > 0) {
        make(change.code, false);
        finish();
    }
    return true;
}

void KeyInjector::make(KeyCode code, bool isPress) {
    // Without a device it is typed on the one that the server has for this.
    std::uint8_t press = XCB_KEY_PRESS;
    if (usersDevice)
        press = static_cast<std::uint8_t>(xcb_get_extension_data(x, &xcb_input_id)->first_event
                                          + XCB_INPUT_DEVICE_KEY_PRESS);
    auto cookie = xcb_test_fake_input(x, isPress ? press : press + 1, code, XCB_CURRENT_TIME, XCB_NONE, 0, 0,
                                      static_cast<std::uint8_t>(usersDevice.value_or(0)));
    if (keepsAccount)
        made.push_back({cookie.sequence, code, isPress});
}

void KeyInjector::finish() {
    // Who asks the server for something from here on, on whatever connection, asks behind these events. And
    // an event carries the number of the last request of this connection that was carried out before it: with
    // this request behind them, the numbers of those that make events are their events' alone.
    static_cast<void>(x.reply(xcb_get_input_focus_reply, xcb_get_input_focus(x)));
}

bool KeyInjector::wasMadeHere(const Change& change) {
    // Some requests make no event (the press of a key that is down); what is older than this event is of no
    // use.
    while (!made.empty() && static_cast<std::int32_t>(made.front().sequence - change.sequence) < 0)
        made.pop_front();
    if (made.empty() || made.front() != change)
        return false;
    made.pop_front();
    return true;
}

} // namespace platform::desktop
