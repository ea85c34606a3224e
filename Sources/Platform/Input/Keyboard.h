#pragma once

#include "Platform/Foundation/RunLoop.h"
#include "Platform/Foundation/Task.h"
#include "Platform/Input/KeyEvent.h"

#include <functional>
#include <memory>
#include <optional>

namespace platform {

// Delivers the events of a tap on a run loop for as long as it lives.
class RunLoopSource {
public:
    virtual ~RunLoopSource() = default;
};

// Sees events ahead of every application. What the callback returns goes on to them; nothing, and the event
// is swallowed. The callback must return at once, or the system disables the tap and tells it so by an event
// type.
class EventTap {
public:
    using Callback = std::function<std::optional<KeyEvent>(EventType, const KeyEvent&)>;

    virtual ~EventTap() = default;

    virtual std::unique_ptr<RunLoopSource> addTo(RunLoop& runLoop) = 0;
    virtual void enable() = 0;
};

// Observes events on their way to other applications, on the main thread, for as long as it lives.
class EventMonitor {
public:
    virtual ~EventMonitor() = default;
};

// The keys of the machine. Taps and monitors belong to the main thread; events may be posted from any thread.
class Keyboard {
public:
    virtual ~Keyboard() = default;

    // No tap where the permission is missing or another program has the key. It is disabled at first.
    virtual std::unique_ptr<EventTap> createEventTap(EventMask events, EventTap::Callback callback) = 0;

    virtual std::unique_ptr<EventMonitor> addGlobalMonitor(EventMask events,
                                                           std::function<void(const KeyEvent&)> handler) = 0;

    // Types on the user's behalf, with exactly the event's modifiers whatever the user holds. Done once it is
    // typed; may wait, within a bound, for the application to come to the front, without blocking the thread
    // or being interrupted by a cancellation. An event that cannot be made is skipped.
    virtual Task<void> post(KeyEvent event) = 0;
};

} // namespace platform
