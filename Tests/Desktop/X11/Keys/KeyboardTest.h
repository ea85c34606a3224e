#pragma once

#include "Desktop/KeyboardDisplay.h"
#include "Desktop/Person.h"
#include "Desktop/Windows.h"
#include "Platform/Desktop/DesktopWorkspace.h"
#include "Platform/Desktop/X11/Keys/DesktopKeyboard.h"
#include "Platform/Desktop/X11/Server/ActiveWindow.h"
#include "Platform/Foundation/ThreadRunLoop.h"
#include "Support/RunToEnd.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <future>
#include <random>

#include <gtest/gtest.h>

namespace platform::desktop {

using namespace std::chrono_literals;
using tests::comesTrue;
using tests::Key;

inline constexpr int shiftState = 1;
inline constexpr int lockState = 2;
inline constexpr int controlState = 4;
inline constexpr int altState = 8;

// What was reported on the run loop's thread.
class Reports {
public:
    void add(const KeyEvent& event) {
        std::lock_guard lock(mutex);
        text += event.type == EventType::keyDown   ? "key " + std::to_string(event.keyCode) + " "
                : event.keyCode != key::function   ? "other "
                : event.flags == flag::secondaryFn ? "down "
                                                   : "up ";
    }
    std::string get() const {
        std::lock_guard lock(mutex);
        return text;
    }
    testing::AssertionResult becomes(const std::string& expected) const {
        const bool didCome = comesTrue([&] { return get() == expected; });
        return (didCome ? testing::AssertionSuccess() : testing::AssertionFailure()) << get();
    }

private:
    mutable std::mutex mutex;
    std::string text;
};

// A combination's events when nothing else is held.
inline std::vector<SeenKey> combination(int modifier, int modifierState, int code) {
    return {{true, modifier, 0},
            {true, code, modifierState},
            {false, code, modifierState},
            {false, modifier, modifierState}};
}

inline std::vector<SeenKey> plain(int code, int state = 0) {
    return {{true, code, state}, {false, code, state}};
}

class KeyboardTest : public testing::Test {
protected:
    std::unique_ptr<EventTap> makeTap(DesktopKeyboard& from) {
        return from.createEventTap(maskOf(EventType::flagsChanged), [this](EventType, const KeyEvent& event) {
            tapped.add(event);
            return std::nullopt;
        });
    }

    void startTap() {
        tap = makeTap(keyboard);
        ASSERT_TRUE(tap);
        source = tap->addTo(loop.runLoop());
        tap->enable();
    }

    void post(int code, std::uint64_t flags = 0) {
        for (const auto type : {EventType::keyDown, EventType::keyUp})
            tests::runToEnd(loop.runLoop(), keyboard.post({type, code, flags}));
    }

    // What the application sees of Command with a key.
    std::vector<SeenKey> seenOfCommand(int code, TestApplication& application) {
        application.takeKeys();
        post(code, flag::command);
        return application.takeKeys();
    }

    tests::XServer display;
    tests::Person user;
    Reports tapped;
    WorkerThread loop;
    XConnection x;
    PostedKeys postedKeys;
    std::promise<std::string> logged;
    DesktopKeyboard keyboard{x, loop.runLoop(), postedKeys,
                             [this](std::string_view entry) { logged.set_value(std::string(entry)); }};
    std::unique_ptr<EventTap> tap;
    std::unique_ptr<RunLoopSource> source;
};

} // namespace platform::desktop
