#pragma once

#include "Platform/Foundation/RunLoop.h"
#include "Platform/Input/Keyboard.h"

#include <vector>

namespace platform::desktop {

// The Fn key of a session in which no program may watch the keyboard: whoever learns of its press and its
// release tells them here. Main thread; outlives its taps and monitors.
class HeldKey {
public:
    explicit HeldKey(RunLoop& mainRunLoop) : runLoop(mainRunLoop) {}
    HeldKey(const HeldKey&) = delete;
    HeldKey& operator=(const HeldKey&) = delete;

    // A key that repeats is pressed once.
    void press();
    void release();
    // The hold is over without the user's having let go: nothing may be confirmed. Monitors hear of Escape
    // first; while nobody listens for it yet, the hold goes on until somebody does.
    void abandon();
    bool isDown() const { return down; }

    std::unique_ptr<EventTap> makeTap(EventMask events, EventTap::Callback callback);
    std::unique_ptr<EventMonitor> addMonitor(EventMask events, std::function<void(const KeyEvent&)> handler);

private:
    class Tap;
    class Monitor;

    void tellTap();
    void endLostHold();

    RunLoop& runLoop;
    Tap* tap = nullptr;
    std::vector<Monitor*> monitors;
    bool down = false;
    bool isLost = false;
    unsigned holds = 0;
};

} // namespace platform::desktop
