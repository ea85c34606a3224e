#pragma once

#include "Platform/Desktop/Typing/PostedKeys.h"
#include "Platform/Desktop/X11/Keys/KeyInjector.h"
#include "Platform/Desktop/X11/Keys/SpareKeys.h"
#include "Platform/Foundation/LogSink.h"
#include "Platform/Foundation/ThreadRunLoop.h"
#include "Platform/Input/KeyEvent.h"

#include <atomic>
#include <functional>
#include <thread>

namespace platform::desktop {

// Hears the keys of the whole display on a thread of its own, so that a key that is grabbed is let go at once
// whatever the rest of the program is doing. Any thread.
class KeyWatch {
public:
    // Hears key-down events, and changes of Fn if it is grabbed. Called on the watch's thread.
    using Listener = std::function<void(const KeyEvent&)>;

    // Hears nothing where something is in the way of that. Throws DisplayError. The connection is read by
    // nobody else, and what `account` makes is made on it.
    KeyWatch(const XConnection& events, KeyInjector& account, PostedKeys& postedKeys, LogSink log);
    ~KeyWatch();
    KeyWatch(const KeyWatch&) = delete;
    KeyWatch& operator=(const KeyWatch&) = delete;

    // The keyboard as it is now; nothing where it is not known.
    std::shared_ptr<const KeyMap> keyMap() const;

    // Takes the key that stands for Fn away from all applications. False if another program has it.
    bool grabFunctionKey(std::shared_ptr<const Listener> listener);
    void ungrabFunctionKey();

    // Hears of key presses for as long as the listener is kept by its owner.
    void addMonitor(const std::shared_ptr<const Listener>& listener);
    void removeMonitor(const std::shared_ptr<const Listener>& listener);

private:
    struct Held {
        KeyCode code;
        xcb_input_device_id_t device;
    };

    void run();
    bool isEnd(const xcb_generic_event_t& event) const;
    void handle(const xcb_generic_event_t& event);
    void handleGrabbedPress(KeyCode code, std::uint32_t sequence);
    void handleGrabbedRelease(KeyCode code, std::uint32_t sequence);
    void handleRawKey(const xcb_input_raw_key_press_event_t& event);
    void handleUsersRelease(KeyCode code);
    void handleDevices(const xcb_input_hierarchy_event_t& event);
    void endLostHold();
    bool tellsMonitors() const;
    void tellMonitors(const KeyEvent& event) const;
    void tellTap(const KeyEvent& event) const;
    bool isGrabbed(KeyCode code) const;
    std::shared_ptr<const KeyMap> readServerMap();
    void keyMapChanged();
    void renewKeyMap();
    void grabOnceFree();
    bool grab(KeyCode code);
    void ungrab(KeyCode code);
    void chooseRawEvents();

    const XConnection& x;
    KeyInjector& injector;
    PostedKeys& postedKeys;
    const LogSink log;
    const XConnection mapDisplay;
    const xcb_window_t mailbox;
    std::uint8_t inputExtension = 0;
    std::atomic<unsigned> mapChanges = 0;
    SpareKeys spareKeys;
    std::optional<Held> held;
    xcb_input_device_id_t pressingDevice = 0;
    // Its end is still to be told, as an abandonment.
    std::atomic<bool> isHoldLost = false;

    mutable std::mutex mutex;
    std::shared_ptr<const KeyMap> map;
    std::shared_ptr<const Listener> tap;
    std::optional<KeyCode> grabbed;
    std::vector<std::shared_ptr<const Listener>> monitors;
    bool hearsRawEvents = false;

    std::thread thread;
    // Reading a map takes longer than a key may.
    WorkerThread mapReader;
};

} // namespace platform::desktop
