#include "Platform/Desktop/Hold/HeldKey.h"

#include <algorithm>

namespace platform::desktop {
namespace {

using namespace std::chrono_literals;

// Longer than anybody reads a translation in the pill: the release was lost.
constexpr auto longestHold = 60s;

class AttachedTap : public RunLoopSource {};

} // namespace

class HeldKey::Tap : public EventTap {
public:
    Tap(HeldKey& source, EventMask mask, Callback callback)
        : key(source), events(mask), report(std::move(callback)) {
        key.tap = this;
    }
    ~Tap() override { key.tap = nullptr; }
    Tap(const Tap&) = delete;
    Tap& operator=(const Tap&) = delete;

    // Whatever the key does is told on the main run loop, the only one there is for it.
    std::unique_ptr<RunLoopSource> addTo(RunLoop& /*mainRunLoop*/) override {
        return std::make_unique<AttachedTap>();
    }
    void enable() override { isEnabled = true; }

    void tell(const KeyEvent& event) const {
        if (isEnabled && (events & maskOf(event.type)) != 0)
            static_cast<void>(report(event.type, event));
    }

private:
    HeldKey& key;
    const EventMask events;
    const Callback report;
    bool isEnabled = false;
};

class HeldKey::Monitor : public EventMonitor {
public:
    Monitor(HeldKey& source, EventMask mask, std::function<void(const KeyEvent&)> told)
        : key(source), events(mask), handler(std::move(told)) {
        key.monitors.push_back(this);
    }
    ~Monitor() override { std::erase(key.monitors, this); }
    Monitor(const Monitor&) = delete;
    Monitor& operator=(const Monitor&) = delete;

    void tell(const KeyEvent& event) const {
        if ((events & maskOf(event.type)) == 0)
            return;
        // What is called may drop this.
        const auto called = handler;
        called(event);
    }

private:
    HeldKey& key;
    const EventMask events;
    const std::function<void(const KeyEvent&)> handler;
};

void HeldKey::press() {
    if (down)
        return;
    down = true;
    runLoop.postAfter(longestHold, [this, hold = ++holds] {
        if (hold == holds)
            abandon();
    });
    tellTap();
}

void HeldKey::release() {
    if (!down || isLost)
        return;
    down = false;
    tellTap();
}

void HeldKey::abandon() {
    if (!down)
        return;
    isLost = true;
    endLostHold();
}

void HeldKey::endLostHold() {
    if (!isLost || monitors.empty())
        return;
    isLost = false;
    const auto listening = monitors;
    for (const auto* monitor : listening)
        if (std::ranges::count(monitors, monitor) != 0)
            monitor->tell({EventType::keyDown, key::escape});
    down = false;
    tellTap();
}

void HeldKey::tellTap() {
    if (tap)
        tap->tell({EventType::flagsChanged, key::function, down ? flag::secondaryFn : 0});
}

std::unique_ptr<EventTap> HeldKey::makeTap(EventMask events, EventTap::Callback callback) {
    return std::make_unique<Tap>(*this, events, std::move(callback));
}

std::unique_ptr<EventMonitor> HeldKey::addMonitor(EventMask events,
                                                  std::function<void(const KeyEvent&)> handler) {
    auto monitor = std::make_unique<Monitor>(*this, events, std::move(handler));
    if (isLost)
        runLoop.post([this] { endLostHold(); });
    return monitor;
}

} // namespace platform::desktop
