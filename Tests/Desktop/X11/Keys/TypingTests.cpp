#include "Desktop/X11/Keys/KeyboardTest.h"

namespace platform::desktop {
namespace {

TEST_F(KeyboardTest, TypesCombinationsWithExactlyTheirModifiersInEveryLayout) {
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

TEST_F(KeyboardTest, LiftsWhatTheUserHoldsAndPutsItBack) {
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

TEST_F(KeyboardTest, LeavesNothingPressedHoweverTheUserTypesMeanwhile) {
    TestApplication application;
    startTap();
    // Nothing is typed before the user has pressed the key, which also tells on what keyboard.
    user.strike({Key::rightControl});
    ASSERT_TRUE(tapped.becomes("down up "));
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
TEST_F(KeyboardTest, EndsASelectionBesideAnInputMethod) {
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

TEST_F(KeyboardTest, NeverInterruptsATerminal) {
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

TEST_F(KeyboardTest, TypesIntoTheApplicationThatWasBroughtBackOrNotAtAll) {
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
