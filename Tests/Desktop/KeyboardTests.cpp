#include "Desktop/KeyboardDisplay.h"
#include "Platform/Desktop/DesktopKeyboard.h"
#include "Platform/Foundation/ThreadRunLoop.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <random>

#include <gtest/gtest.h>

namespace platform::desktop {
namespace {

using namespace std::chrono_literals;
using tests::comesTrue;

// Places on an ordinary keyboard.
constexpr int escape = 9;
constexpr int leftControl = 37;
constexpr int leftShift = 50;
constexpr int letterX = 53;
constexpr int letterC = 54;
constexpr int leftAlt = 64;
constexpr int capsLock = 66;
constexpr int f12 = 96;
constexpr int rightControl = 105;
constexpr int rightArrow = 114;
constexpr int insertKey = 118;

constexpr int shiftState = 1;
constexpr int lockState = 2;
constexpr int controlState = 4;
constexpr int altState = 8;

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
    bool becomes(const std::string& expected) const {
        return comesTrue([&] { return get() == expected; });
    }

private:
    mutable std::mutex mutex;
    std::string text;
};

// A combination's events when nothing else is held.
std::vector<SeenKey> combination(int modifier, int modifierState, int code) {
    return {{true, modifier, 0},
            {true, code, modifierState},
            {false, code, modifierState},
            {false, modifier, modifierState}};
}

std::vector<SeenKey> plain(int code, int state = 0) {
    return {{true, code, state}, {false, code, state}};
}

class Keyboard : public testing::Test {
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
        keyboard.post({EventType::keyDown, code, flags});
        keyboard.post({EventType::keyUp, code, flags});
    }

    // What the application sees of Command with a key.
    std::vector<SeenKey> seenOfCommand(int code, TestApplication& application) {
        application.takeKeys();
        post(code, flag::command);
        return application.takeKeys();
    }

    tests::XServer display;
    TestUser user;
    Reports tapped;
    WorkerThread loop;
    XConnection x;
    PostedKeys postedKeys;
    DesktopKeyboard keyboard{x, loop.runLoop(), postedKeys};
    std::unique_ptr<EventTap> tap;
    std::unique_ptr<RunLoopSource> source;
};

TEST_F(Keyboard, ReportsAHoldOnceAndHidesItFromApplications) {
    TestApplication application;
    run("xset r " + std::to_string(rightControl));
    startTap();
    for (std::string expected; int modifier : {0, leftShift, leftAlt}) {
        if (modifier != 0)
            user.press(modifier);
        user.press(rightControl);
        ASSERT_TRUE(tapped.becomes(expected += "down "));
        std::this_thread::sleep_for(300ms);
        if (modifier != 0)
            user.release(modifier);
        application.takeKeys();
        user.type(letterX);
        EXPECT_EQ(application.takeKeys(), plain(letterX));
        user.release(rightControl);
        ASSERT_TRUE(tapped.becomes(expected += "up "));
        EXPECT_EQ(application.takeKeys(), std::vector<SeenKey>());
        EXPECT_EQ(user.keysDown(), std::vector<int>());
    }
    tap = nullptr;
    user.type(rightControl);
    EXPECT_EQ(application.takeKeys(),
              (std::vector<SeenKey>{{true, rightControl, 0}, {false, rightControl, controlState}}));
}

// The first events of a hold come while the keyboard is still grabbed.
TEST_F(Keyboard, HearsTheShortestTapAndWhatIsTypedInIt) {
    TestApplication application;
    startTap();
    std::string expected;
    for (int round = 0; round < 100; ++round) {
        user.press(rightControl);
        if (round % 2 == 0)
            user.type(letterX);
        user.release(rightControl);
        ASSERT_TRUE(tapped.becomes(expected += "down up ")) << tapped.get();
        const auto seen = application.takeKeys();
        ASSERT_EQ(std::ranges::count(seen, SeenKey{true, letterX, 0}), round % 2 == 0 ? 1 : 0);
        ASSERT_EQ(std::ranges::count(seen, rightControl, &SeenKey::code), 0);
        ASSERT_EQ(user.keysDown(), std::vector<int>());
    }
}

TEST_F(Keyboard, TypesCombinationsWithExactlyTheirModifiersInEveryLayout) {
    // Where a layout types no Latin letters, they are put on keys that no keyboard has.
    constexpr int anyKey = 0;
    struct Layout {
        const char* command;
        int a;
        int c;
        int v;
    };
    constexpr auto layouts = std::to_array<Layout>({
        {"us", 38, 54, 55},
        {"de", 38, 54, 55},
        {"ru", anyKey, anyKey, anyKey},
        {"ru,gr", anyKey, anyKey, anyKey},
        {"fr", 24, 54, 55},
        {"us -variant dvorak", 38, 31, 60},
        {"ru,fr", 24, 54, 55},
        {"us -option ctrl:swap_lalt_lctl", 38, 54, 55},
    });
    TestApplication application;
    startTap();
    for (const auto& layout : layouts) {
        SCOPED_TRACE(layout.command);
        run("setxkbmap -option");
        run(std::string("setxkbmap ") + layout.command);
        int control = std::string(layout.command).ends_with("lctl") ? leftAlt : leftControl;
        auto types = [&](int letter, int code) {
            const auto seen = seenOfCommand(letter, application);
            return seen
                   == combination(control, controlState,
                                  code == anyKey && seen.size() > 1 ? seen[1].code : code);
        };
        ASSERT_TRUE(comesTrue([&] { return types(key::a, layout.a); }));
        EXPECT_TRUE(types(key::c, layout.c));
        EXPECT_TRUE(types(key::v, layout.v));
        post(key::rightArrow);
        EXPECT_EQ(application.takeKeys(), plain(rightArrow));
    }
    EXPECT_EQ(user.keysDown(), std::vector<int>());
}

TEST_F(Keyboard, LiftsWhatTheUserHoldsAndPutsItBack) {
    TestApplication application;
    startTap();
    user.type(capsLock);
    user.press(leftShift);
    user.press(leftAlt);
    user.press(rightControl);
    ASSERT_TRUE(tapped.becomes("down "));
    auto keys = seenOfCommand(key::c, application);
    EXPECT_NE(std::ranges::find(keys, SeenKey{true, letterC, controlState | lockState}), keys.end());
    application.takeKeys();
    post(key::rightArrow);
    keys = application.takeKeys();
    EXPECT_NE(std::ranges::find(keys, SeenKey{true, rightArrow, lockState}), keys.end());
    EXPECT_EQ(user.keysDown(), (std::vector<int>{leftShift, leftAlt}));

    user.type(letterX);
    EXPECT_EQ(application.takeKeys(), plain(letterX, shiftState | altState | lockState));
    user.release(leftShift);
    user.release(leftAlt);
    user.release(rightControl);
    ASSERT_TRUE(tapped.becomes("down up "));
    EXPECT_TRUE(comesTrue([&] { return user.keysDown().empty(); }));
    application.takeKeys();
    user.type(letterX);
    EXPECT_EQ(application.takeKeys(), plain(letterX, lockState));
}

TEST_F(Keyboard, LeavesNothingPressedHoweverTheUserTypesMeanwhile) {
    TestApplication application;
    startTap();
    std::atomic<bool> isDone = false;
    std::jthread typist([&] {
        std::minstd_rand random(7);
        while (!isDone) {
            for (int code : {leftShift, leftControl, leftAlt})
                (random() % 2 != 0) ? user.press(code) : user.release(code);
            user.type(letterX);
        }
        for (int code : {leftShift, leftControl, leftAlt})
            user.release(code);
    });
    for (int round = 0; round < 200; ++round)
        post(key::c, flag::command);
    isDone = true;
    typist.join();
    EXPECT_TRUE(comesTrue([&] { return user.keysDown().empty(); }));
    // The server counts each modifier's presses: a surplus one would show now.
    EXPECT_EQ(seenOfCommand(key::c, application), combination(leftControl, controlState, letterC));
}

TEST_F(Keyboard, GoesOnWhenTheKeyboardMapChanges) {
    TestApplication application;
    startTap();
    user.press(rightControl);
    ASSERT_TRUE(tapped.becomes("down "));
    run("setxkbmap de");
    run("xmodmap -e 'keycode " + std::to_string(f12) + " = XF86Fn'");
    user.release(rightControl);
    ASSERT_TRUE(tapped.becomes("down up "));

    // The new map has a key of that name.
    ASSERT_TRUE(comesTrue([&] {
        user.press(f12);
        bool isSwallowed = application.takeKeys().empty();
        user.release(f12);
        return isSwallowed;
    }));
    ASSERT_TRUE(comesTrue([&] { return tapped.get().ends_with("up "); }));
    auto before = tapped.get();
    user.press(f12);
    std::this_thread::sleep_for(300ms);
    user.release(f12);
    EXPECT_TRUE(tapped.becomes(before + "down up "));
    application.takeKeys();
    user.type(rightControl);
    EXPECT_FALSE(application.takeKeys().empty());
    EXPECT_EQ(user.keysDown(), std::vector<int>());
}

TEST_F(Keyboard, GivesNoTapWhileAnotherProgramHasTheKey) {
    const XConnection owner;
    owner.errorOf(xcb_grab_key_checked(owner, 0, owner.root(), XCB_MOD_MASK_SHIFT, rightControl,
                                       XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    EXPECT_FALSE(makeTap(keyboard));
    owner.errorOf(xcb_ungrab_key_checked(owner, rightControl, owner.root(), XCB_MOD_MASK_ANY));
    EXPECT_TRUE(makeTap(keyboard));
    startTap();
    XConnection other;
    DesktopKeyboard second(other, loop.runLoop(), postedKeys);
    EXPECT_FALSE(makeTap(second));
}

TEST_F(Keyboard, MonitorsTheUsersKeysAndNotItsOwn) {
    TestApplication application;
    Reports monitored;
    auto monitor = keyboard.addGlobalMonitor(maskOf(EventType::keyDown),
                                             [&](const KeyEvent& event) { monitored.add(event); });
    run("setxkbmap ru");
    post(key::c, flag::command);
    user.type(letterX);
    application.takeKeys();
    user.type(escape);
    EXPECT_TRUE(monitored.becomes("key 53 "));
    EXPECT_EQ(application.takeKeys(), plain(escape));
    monitor = nullptr;
    user.type(escape);
    application.takeKeys();
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(monitored.get(), "key 53 ");
}

TEST_F(Keyboard, NeverInterruptsATerminal) {
    const auto insertCopy = combination(leftControl, controlState, insertKey);
    struct Terminal {
        const char* windowClass;
        int copyKey;
    };
    for (const auto& [windowClass, copyKey] : std::to_array<Terminal>({{"XTerm", 0},
                                                                       {"konsole", 0},
                                                                       {"Gnome-terminal", insertKey},
                                                                       {"Xfce4-terminal", insertKey},
                                                                       {"kitty", letterC}})) {
        SCOPED_TRACE(windowClass);
        TestApplication terminal(windowClass);
        auto before = postedKeys.latest();
        auto keys = seenOfCommand(key::c, terminal);
        if (copyKey == 0) {
            EXPECT_TRUE(keys.empty());
            EXPECT_EQ(postedKeys.latest().has_value(), before.has_value());
        } else {
            int state = copyKey == insertKey ? controlState : controlState | shiftState;
            EXPECT_NE(std::ranges::find(keys, SeenKey{true, copyKey, state}), keys.end());
            EXPECT_EQ(std::ranges::find(keys, SeenKey{true, letterC, controlState}), keys.end());
            ASSERT_TRUE(postedKeys.latest());
            EXPECT_EQ(postedKeys.latest()->effect, ClipboardEffect::copy);
            EXPECT_EQ(postedKeys.latest()->window, terminal.window());
        }
        EXPECT_TRUE(seenOfCommand(key::a, terminal).empty());
        post(key::rightArrow);
        EXPECT_TRUE(terminal.takeKeys().empty());
    }
}

TEST(KeyboardDisplay, EndsTheProgramWithASentenceWhenTheDisplayGoesAway) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    auto loseTheDisplay = [] {
        tests::XServer display;
        WorkerThread loop;
        XConnection x;
        PostedKeys postedKeys;
        DesktopKeyboard keyboard(x, loop.runLoop(), postedKeys);
        display.end();
        std::this_thread::sleep_for(10s);
    };
    EXPECT_EXIT(loseTheDisplay(), testing::ExitedWithCode(1), "The connection to the X display was lost");
}

TEST(KeyboardDisplay, IsMissedInASentence) {
    setenv("DISPLAY", ":4711", 1);
    try {
        XConnection x;
        FAIL();
    } catch (const DisplayError& error) {
        EXPECT_STREQ(error.what(), "The X display \":4711\" could not be opened.");
    }
}

} // namespace
} // namespace platform::desktop
