#include "Desktop/X11/Keys/KeyboardTest.h"

namespace platform::desktop {
namespace {

TEST_F(KeyboardTest, ReportsAHoldOnceAndHidesItFromApplications) {
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
TEST_F(KeyboardTest, HearsTheShortestTapAndWhatIsTypedInIt) {
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

TEST_F(KeyboardTest, GoesOnWhenTheKeyboardMapChanges) {
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

TEST_F(KeyboardTest, GivesNoTapWhileAnotherProgramHasTheKey) {
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

TEST_F(KeyboardTest, TakesTheKeyOfANewMapOnceAnotherProgramLetsItGo) {
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
TEST_F(KeyboardTest, AbandonsAHoldWhoseKeyboardGoes) {
    startTap();
    const auto monitor = [this] {
        return keyboard.addGlobalMonitor(maskOf(EventType::keyDown),
                                         [this](const KeyEvent& event) { tapped.add(event); });
    };
    const auto switchKeyboard = [&](bool isOn) { user.switchDevice(isOn); };
    // The server would report the release of a key that applications still hold for pressed.
    const auto isLifted = [this] { return comesTrue([this] { return user.keysDown().empty(); }); };
    user.press(Key::rightControl);
    ASSERT_TRUE(tapped.becomes("down ") && isLifted());
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
    ASSERT_TRUE(tapped.becomes(expected += "down ") && isLifted());
    switchKeyboard(false);
    switchKeyboard(true);
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(tapped.get(), expected);
    listening = monitor();
    EXPECT_TRUE(tapped.becomes(expected += "key 53 up "));
    listening = nullptr;

    // Nobody ever did: the key works all the same.
    user.press(Key::rightControl);
    ASSERT_TRUE(tapped.becomes(expected += "down ") && isLifted());
    switchKeyboard(false);
    switchKeyboard(true);
    user.strike({Key::rightControl});
    EXPECT_TRUE(tapped.becomes(expected += "up down up "));
}

TEST_F(KeyboardTest, MonitorsTheUsersKeysAndNotItsOwn) {
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

} // namespace
} // namespace platform::desktop
