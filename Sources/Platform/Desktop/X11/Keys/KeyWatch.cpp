#include "Platform/Desktop/X11/Keys/KeyWatch.h"

#include "Platform/Desktop/X11/Keys/ServerKeyMap.h"
#include "Platform/Desktop/X11/Keys/TrustObstacle.h"

#include <algorithm>
#include <array>

namespace platform::desktop {

namespace {

using namespace std::chrono_literals;

constexpr KeyEvent functionDown{EventType::flagsChanged, key::function, flag::secondaryFn};
constexpr KeyEvent functionUp{EventType::flagsChanged, key::function, 0};

// Those behind it are the wheel's.
constexpr std::uint32_t lastButton = 3;

// What the watch's thread is sent to end it.
constexpr xcb_atom_t endMessage = XCB_ATOM_INTEGER;

} // namespace

KeyWatch::KeyWatch(const XConnection& events, KeyInjector& account, PostedKeys& keys, LogSink sink)
    : x(events),
      injector(account),
      postedKeys(keys),
      log(std::move(sink)),
      mailbox(events.makeHiddenWindow()),
      spareKeys(mapDisplay) {
    // Nor is the keyboard's map touched.
    if (trustObstacle(x))
        return;
    inputExtension = xcb_get_extension_data(x, &xcb_input_id)->major_opcode;
    map = readServerMap();
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
    {
        std::lock_guard lock(mutex);
        monitors.push_back(listener);
        chooseRawEvents();
    }
    endLostHold();
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
        if (input.extension != inputExtension)
            return;
        if (input.event_type == XCB_INPUT_HIERARCHY)
            handleDevices(reinterpret_cast<const xcb_input_hierarchy_event_t&>(event));
        else if (input.event_type == XCB_INPUT_RAW_BUTTON_PRESS && input.detail <= lastButton)
            postedKeys.recordUsersAct();
        else if (input.event_type == XCB_INPUT_RAW_KEY_PRESS || input.event_type == XCB_INPUT_RAW_KEY_RELEASE)
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
    if (isHoldLost.exchange(false))
        tellTap(functionUp);
    tellTap(functionDown);
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
    postedKeys.recordUsersAct();
    if (const auto known = keyMap())
        if (const auto pressed = known->virtualKeyOf(code))
            tellMonitors({EventType::keyDown, *pressed});
}

void KeyWatch::handleUsersRelease(KeyCode code) {
    if (!held || held->code != code)
        return;
    held.reset();
    tellTap(functionUp);
}

// A keyboard that is unplugged, or switched off with its console, reports no release. The key is up there for
// the server since it was lifted.
void KeyWatch::handleDevices(const xcb_input_hierarchy_event_t& event) {
    constexpr std::uint32_t gone = XCB_INPUT_HIERARCHY_MASK_SLAVE_REMOVED
                                   | XCB_INPUT_HIERARCHY_MASK_SLAVE_DETACHED
                                   | XCB_INPUT_HIERARCHY_MASK_DEVICE_DISABLED;
    for (auto info = xcb_input_hierarchy_infos_iterator(&event); info.rem > 0;
         xcb_input_hierarchy_info_next(&info)) {
        if (!held || info.data->deviceid != held->device || (info.data->flags & gone) == 0)
            continue;
        held.reset();
        isHoldLost = true;
        endLostHold();
    }
}

// The user did not let the key go, so nothing is confirmed: Escape comes before the release. While nobody
// listens for it yet the hold goes on.
void KeyWatch::endLostHold() {
    if (!tellsMonitors() || !isHoldLost.exchange(false))
        return;
    tellMonitors({EventType::keyDown, key::escape});
    tellTap(functionUp);
}

bool KeyWatch::tellsMonitors() const {
    std::lock_guard lock(mutex);
    return !monitors.empty();
}

void KeyWatch::tellMonitors(const KeyEvent& event) const {
    std::vector<std::shared_ptr<const Listener>> listeners;
    {
        std::lock_guard lock(mutex);
        listeners = monitors;
    }
    for (const auto& listener : listeners)
        (*listener)(event);
}

void KeyWatch::tellTap(const KeyEvent& event) const {
    std::shared_ptr<const Listener> listener;
    {
        std::lock_guard lock(mutex);
        listener = tap;
    }
    if (listener)
        (*listener)(event);
}

bool KeyWatch::isGrabbed(KeyCode code) const {
    std::lock_guard lock(mutex);
    return grabbed == code;
}

std::shared_ptr<const KeyMap> KeyWatch::readServerMap() {
    auto read = readKeyMap(mapDisplay);
    return read && spareKeys.provide(*read) ? readKeyMap(mapDisplay) : read;
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
    auto renewed = readServerMap();
    if (!renewed)
        return;
    std::lock_guard lock(mutex);
    map = std::move(renewed);
    if (!tap || grabbed == map->functionKey())
        return;
    if (grabbed)
        ungrab(*grabbed);
    if (!map->functionKey() || grab(*map->functionKey()))
        return;
    log("[Keyboard] Another program has the key; it is taken as soon as it is free");
    grabOnceFree();
}

// Nobody tells when that is.
void KeyWatch::grabOnceFree() {
    constexpr auto lookAgainAfter = 1s;
    mapReader.runLoop().postAfter(lookAgainAfter, [this] {
        std::lock_guard lock(mutex);
        if (tap && !grabbed && map->functionKey() && !grab(*map->functionKey()))
            grabOnceFree();
    });
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
    struct Selection {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    };
    const std::array selections{
        Selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1},
                  wanted ? XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE
                               | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS
                         : 0U},
        Selection{{XCB_INPUT_DEVICE_ALL, 1}, wanted ? std::uint32_t{XCB_INPUT_XI_EVENT_MASK_HIERARCHY} : 0U}};
    // The first press must not come before these are selected.
    x.errorOf(xcb_input_xi_select_events_checked(x, x.root(), selections.size(), &selections.front().head));
    hearsRawEvents = wanted;
    if (wanted)
        injector.startAccount();
    else
        injector.endAccount();
}

} // namespace platform::desktop
