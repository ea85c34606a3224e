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
namespace {

using namespace std::chrono_literals;
using tests::comesTrue;
using tests::Key;

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

TEST_F(Keyboard, ReportsAHoldOnceAndHidesItFromApplications) {
    TestApplication application;
    run("xset r " + std::to_string(Key::rightControl));
    startTap();
    for (std::string expected; int modifier : {0, Key::leftShift, Key::leftAlt}) {
        if (modifier != 0)
            user.press(modifier);
        user.press(Key::rightControl);
        ASSERT_TRUE(tapped.becomes(expected += "down "));
        std::this_thread::sleep_for(300ms);
        if (modifier != 0)
            user.release(modifier);
        application.takeKeys();
        user.strike({Key::x});
        EXPECT_EQ(application.takeKeys(), plain(Key::x));
        user.release(Key::rightControl);
        ASSERT_TRUE(tapped.becomes(expected += "up "));
        EXPECT_EQ(application.takeKeys(), std::vector<SeenKey>());
        EXPECT_EQ(user.keysDown(), std::vector<int>());
    }
    tap = nullptr;
    user.strike({Key::rightControl});
    EXPECT_EQ(application.takeKeys(),
              (std::vector<SeenKey>{{true, Key::rightControl, 0}, {false, Key::rightControl, controlState}}));
}

// The first events of a hold come while the keyboard is still grabbed.
TEST_F(Keyboard, HearsTheShortestTapAndWhatIsTypedInIt) {
    TestApplication application;
    startTap();
    std::string expected;
    for (int round = 0; round < 100; ++round) {
        user.press(Key::rightControl);
        if (round % 2 == 0)
            user.strike({Key::x});
        user.release(Key::rightControl);
        ASSERT_TRUE(tapped.becomes(expected += "down up "));
        const auto seen = application.takeKeys();
        ASSERT_EQ(std::ranges::count(seen, SeenKey{true, Key::x, 0}), round % 2 == 0 ? 1 : 0);
        ASSERT_EQ(std::ranges::count(seen, Key::rightControl, &SeenKey::code), 0);
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
        int control = std::string(layout.command).ends_with("lctl") ? Key::leftAlt : Key::leftControl;
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
        EXPECT_EQ(application.takeKeys(), plain(Key::right));
    }
    EXPECT_EQ(user.keysDown(), std::vector<int>());
}

TEST_F(Keyboard, LiftsWhatTheUserHoldsAndPutsItBack) {
    TestApplication application;
    startTap();
    user.strike({Key::capsLock});
    user.press(Key::leftShift);
    user.press(Key::leftAlt);
    user.press(Key::rightControl);
    ASSERT_TRUE(tapped.becomes("down "));
    auto keys = seenOfCommand(key::c, application);
    EXPECT_NE(std::ranges::find(keys, SeenKey{true, Key::c, controlState | lockState}), keys.end());
    application.takeKeys();
    post(key::rightArrow);
    keys = application.takeKeys();
    EXPECT_NE(std::ranges::find(keys, SeenKey{true, Key::right, lockState}), keys.end());
    EXPECT_EQ(user.keysDown(), (std::vector<int>{Key::leftShift, Key::leftAlt}));

    user.strike({Key::x});
    EXPECT_EQ(application.takeKeys(), plain(Key::x, shiftState | altState | lockState));
    user.release(Key::leftShift);
    user.release(Key::leftAlt);
    user.release(Key::rightControl);
    ASSERT_TRUE(tapped.becomes("down up "));
    EXPECT_TRUE(comesTrue([&] { return user.keysDown().empty(); }));
    application.takeKeys();
    user.strike({Key::x});
    EXPECT_EQ(application.takeKeys(), plain(Key::x, lockState));
}

TEST_F(Keyboard, LeavesNothingPressedHoweverTheUserTypesMeanwhile) {
    TestApplication application;
    startTap();
    std::atomic<bool> isDone = false;
    std::jthread typist([&] {
        std::minstd_rand random(7);
        while (!isDone) {
            for (int code : {Key::leftShift, Key::leftControl, Key::leftAlt})
                (random() % 2 != 0) ? user.press(code) : user.release(code);
            user.strike({Key::x});
        }
        for (int code : {Key::leftShift, Key::leftControl, Key::leftAlt})
            user.release(code);
    });
    for (int round = 0; round < 200; ++round)
        post(key::c, flag::command);
    isDone = true;
    typist.join();
    EXPECT_TRUE(comesTrue([&] { return user.keysDown().empty(); }));
    // Without its modifier it would be typed over the text.
    EXPECT_TRUE(std::ranges::none_of(application.takeKeys(), [](const SeenKey& key) {
        return key.code == Key::c && (key.state & controlState) == 0;
    }));
    // The server counts each modifier's presses: a surplus one would show now.
    EXPECT_EQ(seenOfCommand(key::c, application), combination(Key::leftControl, controlState, Key::c));
}

// Its own letters would take the arrow.
TEST_F(Keyboard, EndsASelectionBesideAnInputMethod) {
    TestApplication application;
    const xcb_window_t candidates = xcb_generate_id(x);
    constexpr std::uint32_t overrideRedirect = 1;
    xcb_create_window(x, XCB_COPY_FROM_PARENT, candidates, x.root(), 0, 0, 200, 30, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT,
                      &overrideRedirect);
    x.setProperty(candidates, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, std::string("fcitx\0fcitx\0", 12));
    post(key::rightArrow);
    EXPECT_EQ(application.takeKeys(), plain(Key::right));
    xcb_map_window(x, candidates);
    post(key::rightArrow);
    EXPECT_EQ(application.takeKeys(), combination(Key::leftControl, controlState, Key::end));
}

TEST_F(Keyboard, GoesOnWhenTheKeyboardMapChanges) {
    TestApplication application;
    startTap();
    user.press(Key::rightControl);
    ASSERT_TRUE(tapped.becomes("down "));
    run("setxkbmap de");
    run("xmodmap -e 'keycode " + std::to_string(Key::f12) + " = XF86Fn'");
    user.release(Key::rightControl);
    ASSERT_TRUE(tapped.becomes("down up "));

    // The new map has a key of that name.
    ASSERT_TRUE(comesTrue([&] {
        user.strike({Key::f12});
        return application.takeKeys().empty();
    }));
    ASSERT_TRUE(tapped.becomes("down up down up "));
    user.press(Key::f12);
    std::this_thread::sleep_for(300ms);
    user.release(Key::f12);
    EXPECT_TRUE(tapped.becomes("down up down up down up "));
    application.takeKeys();
    user.strike({Key::rightControl});
    EXPECT_FALSE(application.takeKeys().empty());
    EXPECT_EQ(user.keysDown(), std::vector<int>());
}

TEST_F(Keyboard, GivesNoTapWhileAnotherProgramHasTheKey) {
    const XConnection owner;
    owner.errorOf(xcb_grab_key_checked(owner, 0, owner.root(), XCB_MOD_MASK_SHIFT, Key::rightControl,
                                       XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    EXPECT_FALSE(makeTap(keyboard));
    owner.errorOf(xcb_ungrab_key_checked(owner, Key::rightControl, owner.root(), XCB_MOD_MASK_ANY));
    EXPECT_TRUE(makeTap(keyboard));
    startTap();
    XConnection other;
    DesktopKeyboard second(other, loop.runLoop(), postedKeys, {});
    EXPECT_FALSE(makeTap(second));
}

TEST_F(Keyboard, TakesTheKeyOfANewMapOnceAnotherProgramLetsItGo) {
    startTap();
    const XConnection owner;
    owner.errorOf(xcb_grab_key_checked(owner, 0, owner.root(), XCB_MOD_MASK_ANY, Key::f12,
                                       XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    run("xmodmap -e 'keycode " + std::to_string(Key::f12) + " = XF86Fn'");
    EXPECT_TRUE(logged.get_future().get().starts_with("[Keyboard] Another program has the key"));
    owner.errorOf(xcb_ungrab_key_checked(owner, Key::f12, owner.root(), XCB_MOD_MASK_ANY));
    EXPECT_TRUE(comesTrue([&] {
        user.strike({Key::f12});
        return tapped.get().starts_with("down up ");
    }));
}

// As by a switch to another console, or by unplugging it. What was read is not to be pasted anywhere.
TEST_F(Keyboard, AbandonsAHoldWhoseKeyboardGoes) {
    startTap();
    const auto monitor = [this] {
        return keyboard.addGlobalMonitor(maskOf(EventType::keyDown),
                                         [this](const KeyEvent& event) { tapped.add(event); });
    };
    const auto switchKeyboard = [&](bool isOn) { user.switchDevice(isOn); };
    user.press(Key::rightControl);
    ASSERT_TRUE(tapped.becomes("down "));
    auto listening = monitor();
    switchKeyboard(false);
    std::string expected = "down key 53 up ";
    EXPECT_TRUE(tapped.becomes(expected));
    listening = nullptr;
    switchKeyboard(true);

    // While nobody listens for Escape yet, it comes to who does first.
    user.strike({Key::rightControl});
    EXPECT_TRUE(tapped.becomes(expected += "down up "));
    user.press(Key::rightControl);
    ASSERT_TRUE(tapped.becomes(expected += "down "));
    switchKeyboard(false);
    switchKeyboard(true);
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(tapped.get(), expected);
    listening = monitor();
    EXPECT_TRUE(tapped.becomes(expected += "key 53 up "));
    listening = nullptr;

    // Nobody ever did: the key works all the same.
    user.press(Key::rightControl);
    switchKeyboard(false);
    switchKeyboard(true);
    user.strike({Key::rightControl});
    EXPECT_TRUE(tapped.becomes(expected += "down up down up "));
}

TEST_F(Keyboard, MonitorsTheUsersKeysAndNotItsOwn) {
    TestApplication application;
    Reports monitored;
    auto monitor = keyboard.addGlobalMonitor(maskOf(EventType::keyDown),
                                             [&](const KeyEvent& event) { monitored.add(event); });
    run("setxkbmap ru");
    post(key::c, flag::command);
    user.strike({Key::x});
    application.takeKeys();
    user.strike({Key::escape});
    EXPECT_TRUE(monitored.becomes("key 53 "));
    EXPECT_EQ(application.takeKeys(), plain(Key::escape));
    monitor = nullptr;
    user.strike({Key::escape});
    application.takeKeys();
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(monitored.get(), "key 53 ");
}

TEST_F(Keyboard, NeverInterruptsATerminal) {
    const auto insertCopy = combination(Key::leftControl, controlState, Key::insert);
    struct Terminal {
        const char* windowClass;
        int copyKey;
    };
    for (const auto& [windowClass, copyKey] : std::to_array<Terminal>({{"XTerm", 0},
                                                                       {"konsole", 0},
                                                                       {"Gnome-terminal", Key::insert},
                                                                       {"Xfce4-terminal", Key::insert},
                                                                       {"kitty", Key::c}})) {
        SCOPED_TRACE(windowClass);
        TestApplication terminal(windowClass);
        auto before = postedKeys.latest();
        auto keys = seenOfCommand(key::c, terminal);
        if (copyKey == 0) {
            EXPECT_TRUE(keys.empty());
            EXPECT_EQ(postedKeys.latest().has_value(), before.has_value());
        } else {
            int state = copyKey == Key::insert ? controlState : controlState | shiftState;
            EXPECT_NE(std::ranges::find(keys, SeenKey{true, copyKey, state}), keys.end());
            EXPECT_EQ(std::ranges::find(keys, SeenKey{true, Key::c, controlState}), keys.end());
            ASSERT_TRUE(postedKeys.latest());
            EXPECT_EQ(postedKeys.latest()->effect, ClipboardEffect::copy);
            EXPECT_EQ(postedKeys.latest()->window, terminal.window());
        }
        EXPECT_TRUE(seenOfCommand(key::a, terminal).empty());
        post(key::rightArrow);
        EXPECT_TRUE(terminal.takeKeys().empty());
    }
}

TEST_F(Keyboard, TypesIntoTheApplicationThatWasBroughtBackOrNotAtAll) {
    const auto focusOn = [this](xcb_window_t window) {
        xcb_set_input_focus(x, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
        x.flush();
    };
    auto writer = std::make_unique<TestApplication>("writer");
    const auto field = xcb_generate_id(x);
    xcb_create_window(x, XCB_COPY_FROM_PARENT, field, writer->window(), 0, 0, 9, 9, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(x, field);
    focusOn(field);
    DesktopWorkspace workspace(x, ApplicationNames({}, {}), postedKeys);
    const auto chosen = workspace.frontmostApplication().value();
    TestApplication other("other");
    // A window manager was there once.
    const auto left = other.window();
    for (const auto* property : {"_NET_SUPPORTING_WM_CHECK", "_NET_ACTIVE_WINDOW"})
        x.setProperty(x.root(), x.atom(property), XCB_ATOM_WINDOW, std::span(&left, 1));
    workspace.activate(chosen);
    EXPECT_EQ(focusedWindow(x), field);
    EXPECT_EQ(frontWindow(x), writer->window());

    focusOn(other.window());
    postedKeys.aim(writer->window());
    auto late = std::async(std::launch::async, [&] {
        std::this_thread::sleep_for(200ms);
        focusOn(writer->window());
    });
    post(key::c, flag::command);
    EXPECT_EQ(writer->takeKeys(), combination(Key::leftControl, controlState, Key::c));
    late.wait();
    writer = nullptr;
    focusOn(other.window());
    workspace.activate(chosen);
    EXPECT_TRUE(seenOfCommand(key::c, other).empty());
    // The next gesture begins.
    EXPECT_TRUE(workspace.frontmostApplication());
    EXPECT_EQ(seenOfCommand(key::c, other), combination(Key::leftControl, controlState, Key::c));
}

} // namespace
} // namespace platform::desktop
