#pragma once

#include "Platform/Input/Keyboard.h"

#include <functional>
#include <memory>
#include <optional>

namespace lumarin {

// Reports presses and releases of Fn anywhere in the system, strictly in turns, and swallows them. Main
// thread; it lives as long as the program.
class HotkeyListener {
public:
    HotkeyListener() = default;
    HotkeyListener(const HotkeyListener&) = delete;
    HotkeyListener& operator=(const HotkeyListener&) = delete;

    // Called inside the tap's callback, so they must return at once.
    std::function<void()> onFnDown;
    std::function<void()> onFnUp;

    // Where the tap cannot be had, the log says so and nothing is ever reported.
    void start();

private:
    static std::optional<platform::KeyEvent>
    hotkeyCallback(platform::EventType type, const platform::KeyEvent& event, HotkeyListener& listener);
    std::optional<platform::KeyEvent> handle(const platform::KeyEvent& event);

    bool fnIsDown = false;
    std::unique_ptr<platform::EventTap> eventTap;
    std::unique_ptr<platform::RunLoopSource> runLoopSource;
};

} // namespace lumarin
