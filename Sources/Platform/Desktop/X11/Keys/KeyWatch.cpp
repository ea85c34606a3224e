#include "Platform/Desktop/X11/Keys/KeyWatch.h"

#include <algorithm>
#include <array>

#include <xcb/xtest.h>

namespace platform::desktop {

namespace {

using namespace std::chrono_literals;

constexpr KeyEvent functionDown{EventType::flagsChanged, key::function, flag::secondaryFn};
constexpr KeyEvent functionUp{EventType::flagsChanged, key::function, 0};

// What the watch's thread is sent to end it.
constexpr xcb_atom_t endMessage = XCB_ATOM_INTEGER;

} // namespace

bool KeyWatch::isPossible(const XConnection& x) {
    const auto* typing = xcb_get_extension_data(x, &xcb_test_id);
    const auto* input = xcb_get_extension_data(x, &xcb_input_id);
    if (!typing || !typing->present || !input || !input->present)
        return false;
    // Before 2.1 raw events stay away while any program has grabbed the keyboard.
    auto version = x.reply(xcb_input_xi_query_version_reply, xcb_input_xi_query_version(x, 2, 2));
    return version
           && (version->major_version > 2 || (version->major_version == 2 && version->minor_version >= 1));
}

KeyWatch::KeyWatch(const XConnection& events, KeyInjector& account)
    : x(events), injector(account), mailbox(events.makeHiddenWindow()), spareKeys(mapDisplay) {
    if (!isPossible(x))
        return;
    inputExtension = xcb_get_extension_data(x, &xcb_input_id)->major_opcode;
    map = readKeyMap();
    thread = std::thread([this] { run(); });
}

KeyWatch::~KeyWatch() {
    if (thread.joinable()) {
        xcb_client_message_event_t end{};
        end.response_type = XCB_CLIENT_MESSAGE;
        end.format = 32;
        end.window = mailbox;
        end.type = endMessage;
        std::array<char, 32> message{};
        std::copy_n(reinterpret_cast<const char*>(&end), sizeof end, message.data());
        xcb_send_event(x, 0, mailbox, XCB_EVENT_MASK_NO_EVENT, message.data());
        x.flush();
        thread.join();
    }
    xcb_destroy_window(x, mailbox);
    x.flush();
}

std::shared_ptr<const KeyMap> KeyWatch::keyMap() const {
    std::lock_guard lock(mutex);
    return map;
}

bool KeyWatch::grabFunctionKey(std::shared_ptr<const Listener> listener) {
    std::lock_guard lock(mutex);
    if (tap || !map || !map->functionKey() || !grab(*map->functionKey()))
        return false;
    tap = std::move(listener);
    chooseRawEvents();
    return true;
}

void KeyWatch::ungrabFunctionKey() {
    std::lock_guard lock(mutex);
    if (grabbed)
        ungrab(*grabbed);
    tap = nullptr;
    chooseRawEvents();
}

void KeyWatch::addMonitor(const std::shared_ptr<const Listener>& listener) {
    std::lock_guard lock(mutex);
    monitors.push_back(listener);
    chooseRawEvents();
}

void KeyWatch::removeMonitor(const std::shared_ptr<const Listener>& listener) {
    std::lock_guard lock(mutex);
    std::erase(monitors, listener);
    chooseRawEvents();
}

void KeyWatch::run() {
    while (true) {
        XOwned<xcb_generic_event_t> event(xcb_wait_for_event(x));
        if (!event)
            endForLostDisplay();
        if (isEnd(*event))
            return;
        handle(*event);
    }
}

bool KeyWatch::isEnd(const xcb_generic_event_t& event) const {
    const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
    return (event.response_type & 0x7FU) == XCB_CLIENT_MESSAGE && message.window == mailbox
           && message.type == endMessage;
}

void KeyWatch::handle(const xcb_generic_event_t& event) {
    auto type = event.response_type & 0x7FU;
    if (type == XCB_KEY_PRESS) {
        handleGrabbedPress(event.pad0, event.full_sequence);
    } else if (type == XCB_KEY_RELEASE) {
        handleGrabbedRelease(event.pad0, event.full_sequence);
    } else if (type == XCB_GE_GENERIC) {
        const auto& input = reinterpret_cast<const xcb_input_raw_key_press_event_t&>(event);
        bool isRawKey =
            input.event_type == XCB_INPUT_RAW_KEY_PRESS || input.event_type == XCB_INPUT_RAW_KEY_RELEASE;
        if (input.extension == inputExtension && isRawKey)
            handleRawKey(input);
    } else if (type == XCB_MAPPING_NOTIFY) {
        keyMapChanged();
    }
}

void KeyWatch::handleGrabbedPress(KeyCode code, std::uint32_t sequence) {
    if (!isGrabbed(code)) {
        // Typed in the moment before the keyboard was let go: it belongs to the application.
        if (injector.isFromUser({sequence, code, true}))
            injector.pressAgain(code);
        return;
    }
    // The key is up for everyone else until the user presses it again: Right Control must not turn what is
    // typed during the hold into combinations, and its release is as invisible as its press. Also ends the
    // grab.
    injector.lift(code);
    xcb_ungrab_keyboard(x, XCB_CURRENT_TIME);
    x.flush();
    // Repeats of a held key, where the keyboard repeats it.
    if (held)
        return;
    held = Held{code, pressingDevice};
    std::shared_ptr<const Listener> listener;
    {
        std::lock_guard lock(mutex);
        listener = tap;
    }
    if (listener)
        (*listener)(functionDown);
}

// Until the keyboard has been let go, keys come here alone and without raw events: the end of a quick tap.
void KeyWatch::handleGrabbedRelease(KeyCode code, std::uint32_t sequence) {
    if (injector.isFromUser({sequence, code, false}))
        handleUsersRelease(code);
}

void KeyWatch::handleRawKey(const xcb_input_raw_key_press_event_t& event) {
    const auto code = static_cast<KeyCode>(event.detail);
    const bool isPress = event.event_type == XCB_INPUT_RAW_KEY_PRESS;
    if (!injector.isFromUser({event.full_sequence, code, isPress}, event.sourceid))
        return;
    if (!isPress) {
        handleUsersRelease(code);
        return;
    }
    pressingDevice = event.sourceid;
    // A keyboard that was unplugged reports no release; the next key brings it to light.
    if (held && held->code != code && !isPluggedIn(held->device))
        reportRelease();
    std::vector<std::shared_ptr<const Listener>> listeners;
    std::optional<int> pressed;
    {
        std::lock_guard lock(mutex);
        listeners = monitors;
        if (map && !listeners.empty())
            pressed = map->virtualKeyOf(code);
    }
    for (const auto& listener : listeners) {
        if (pressed)
            (*listener)(KeyEvent{EventType::keyDown, *pressed});
    }
}

void KeyWatch::handleUsersRelease(KeyCode code) {
    if (held && held->code == code)
        reportRelease();
}

void KeyWatch::reportRelease() {
    held.reset();
    std::shared_ptr<const Listener> listener;
    {
        std::lock_guard lock(mutex);
        listener = tap;
    }
    if (listener)
        (*listener)(functionUp);
}

bool KeyWatch::isGrabbed(KeyCode code) const {
    std::lock_guard lock(mutex);
    return grabbed == code;
}

// The key itself is up there since it was lifted, whoever holds it.
bool KeyWatch::isPluggedIn(xcb_input_device_id_t device) const {
    return x.reply(xcb_input_xi_query_device_reply, xcb_input_xi_query_device(x, device)) != nullptr;
}

std::shared_ptr<const KeyMap> KeyWatch::readKeyMap() {
    auto read = KeyMap::read(mapDisplay);
    return read && spareKeys.provide(*read) ? KeyMap::read(mapDisplay) : read;
}

// The news come in bursts, and also whenever another device types than before: several times in each gesture,
// which has no time for them.
void KeyWatch::keyMapChanged() {
    constexpr auto settles = 500ms;
    mapReader.runLoop().postAfter(settles, [this, change = ++mapChanges] {
        if (change == mapChanges)
            renewKeyMap();
    });
}

void KeyWatch::renewKeyMap() {
    auto renewed = readKeyMap();
    if (!renewed)
        return;
    std::lock_guard lock(mutex);
    map = std::move(renewed);
    if (!tap || grabbed == map->functionKey())
        return;
    if (grabbed)
        ungrab(*grabbed);
    if (map->functionKey())
        grab(*map->functionKey());
}

bool KeyWatch::grab(KeyCode code) {
    auto request = xcb_grab_key_checked(x, 0, x.root(), XCB_MOD_MASK_ANY, code, XCB_GRAB_MODE_ASYNC,
                                        XCB_GRAB_MODE_ASYNC);
    if (x.errorOf(request) != 0)
        return false;
    grabbed = code;
    return true;
}

void KeyWatch::ungrab(KeyCode code) {
    // Who presses the key from here on, presses it for the applications.
    x.errorOf(xcb_ungrab_key_checked(x, code, x.root(), XCB_MOD_MASK_ANY));
    grabbed.reset();
}

void KeyWatch::chooseRawEvents() {
    bool wanted = tap || !monitors.empty();
    if (wanted == hearsRawEvents || inputExtension == 0)
        return;
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1},
                wanted ? XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE
                       : 0U};
    xcb_input_xi_select_events(x, x.root(), 1, &selection.head);
    x.flush();
    hearsRawEvents = wanted;
    if (wanted)
        injector.startAccount();
    else
        injector.endAccount();
}

} // namespace platform::desktop
