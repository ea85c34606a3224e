#include "Platform/Headless/HeadlessKeyboard.h"

namespace platform::headless {

class HeadlessKeyboard::Tap : public EventTap {
public:
    Tap(HeadlessKeyboard& owner, EventMask mask, Callback function)
        : keyboard(owner), events(mask), callback(std::move(function)) {
        keyboard.tap = this;
    }
    ~Tap() override { keyboard.tap = nullptr; }

    std::unique_ptr<RunLoopSource> addTo(RunLoop& runLoop) override;
    void enable() override { isEnabled = true; }

    HeadlessKeyboard& keyboard;
    const EventMask events;
    const Callback callback;
    bool isEnabled = false;
    bool hasSource = false;
};

class HeadlessKeyboard::TapSource : public RunLoopSource {};

std::unique_ptr<RunLoopSource> HeadlessKeyboard::Tap::addTo(RunLoop&) {
    hasSource = true;
    return std::make_unique<TapSource>();
}

class HeadlessKeyboard::Monitor : public EventMonitor {
public:
    Monitor(HeadlessKeyboard& owner, EventMask mask, std::function<void(const KeyEvent&)> function)
        : keyboard(owner), events(mask), handler(std::move(function)) {
        keyboard.monitors.push_back(this);
    }
    ~Monitor() override { std::erase(keyboard.monitors, this); }

    HeadlessKeyboard& keyboard;
    const EventMask events;
    const std::function<void(const KeyEvent&)> handler;
};

bool HeadlessKeyboard::changeFlags(int keyCode, std::uint64_t flags) {
    const KeyEvent event{EventType::flagsChanged, keyCode, flags};
    bool isSeen = tap && tap->isEnabled && tap->hasSource && (tap->events & maskOf(event.type)) != 0;
    return isSeen && !tap->callback(event.type, event);
}

void HeadlessKeyboard::pressKey(int keyCode) {
    const KeyEvent event{EventType::keyDown, keyCode};
    for (auto monitor : std::vector(monitors))
        if ((monitor->events & maskOf(event.type)) != 0)
            monitor->handler(event);
    field.keyDown(event);
}

void HeadlessKeyboard::disableTap() {
    tap->isEnabled = false;
    tap->callback(EventType::tapDisabledByTimeout, {EventType::tapDisabledByTimeout, 0});
}

std::unique_ptr<EventTap> HeadlessKeyboard::createEventTap(EventMask events, EventTap::Callback callback) {
    if (!isPermitted)
        return nullptr;
    return std::make_unique<Tap>(*this, events, std::move(callback));
}

std::unique_ptr<EventMonitor>
HeadlessKeyboard::addGlobalMonitor(EventMask events, std::function<void(const KeyEvent&)> handler) {
    return std::make_unique<Monitor>(*this, events, std::move(handler));
}

Task<void> HeadlessKeyboard::post(KeyEvent event) {
    if (event.type != EventType::keyDown)
        co_return;
    posted.push_back(event);
    field.keyDown(event);
}

} // namespace platform::headless
