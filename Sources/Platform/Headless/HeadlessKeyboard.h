#pragma once

#include "Platform/Headless/FocusedField.h"
#include "Platform/Input/Keyboard.h"

#include <vector>

namespace platform::headless {

// The keys of a machine in memory. What no tap swallows, and what is posted, reaches the focused field.
class HeadlessKeyboard : public Keyboard {
public:
    explicit HeadlessKeyboard(FocusedField& focusedField) : field(focusedField) {}

    // Whether a tap may be had.
    bool isPermitted = true;

    // What a person does. A key that changes the modifiers tells whether it was swallowed.
    bool changeFlags(int keyCode, std::uint64_t flags);
    bool pressFn() { return changeFlags(key::function, flag::secondaryFn); }
    bool releaseFn() { return changeFlags(key::function, 0); }
    void pressKey(int keyCode);

    // The system finds the tap too slow: it sees nothing more until it is enabled again.
    void disableTap();

    // All key-downs posted so far, in order.
    std::vector<KeyEvent> posted;

    std::unique_ptr<EventTap> createEventTap(EventMask events, EventTap::Callback callback) override;
    std::unique_ptr<EventMonitor> addGlobalMonitor(EventMask events,
                                                   std::function<void(const KeyEvent&)> handler) override;
    Task<void> post(KeyEvent event) override;

private:
    class Tap;
    class TapSource;
    class Monitor;

    FocusedField& field;
    Tap* tap = nullptr;
    std::vector<Monitor*> monitors;
};

} // namespace platform::headless
