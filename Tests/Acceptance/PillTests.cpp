#include "Acceptance/AcceptanceTest.h"
#include "Desktop/Windows.h"

#include <algorithm>

namespace tests {

using namespace platform::desktop;

TEST(AcceptancePill, IsBeforeAFullScreenWindowAndTakesNothingFromIt) {
    AcceptanceDesk desk;
    desk.service.thinking = 700ms;
    const TestEditor editor;
    editor.setUp("Hello");
    const XConnection x;
    const auto field = editor.window();
    ASSERT_TRUE(becomeFullScreen(x, field));
    // All that could be taken from it is news from now on.
    const std::uint32_t fieldNews = XCB_EVENT_MASK_FOCUS_CHANGE | XCB_EVENT_MASK_BUTTON_PRESS;
    xcb_change_window_attributes(x, field, XCB_CW_EVENT_MASK, &fieldNews);
    const std::uint32_t rootNews = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(x, x.root(), XCB_CW_EVENT_MASK, &rootNews);
    x.flush();

    desk.person.press(Key::rightControl);
    desk.program.process().awaitLine("[SM] Translating");
    EXPECT_TRUE(comesTrue([&] { return isPill(x, frontWindow(x)); }));
    desk.display.start({"xdotool", "mousemove", "640", "36", "click", "1"})->awaitEnd();
    desk.program.process().awaitLine("[SM] Done: ");
    EXPECT_TRUE(isPill(x, frontWindow(x)));
    const auto managed = x.property(x.root(), x.atom("_NET_CLIENT_LIST")).value().values();
    EXPECT_EQ(std::ranges::count(managed, frontWindow(x)), 0);
    desk.person.release(Key::rightControl);
    desk.program.process().awaitLine("[SM] Injected");
    EXPECT_TRUE(comesTrue([&] { return !isPill(x, frontWindow(x)); }));
    EXPECT_TRUE(editor.comesToHold("T(Hello)"));

    int clicks = 0;
    while (const XOwned<xcb_generic_event_t> event{xcb_poll_for_event(x)}) {
        const auto& focus = reinterpret_cast<const xcb_focus_out_event_t&>(*event);
        const auto& property = reinterpret_cast<const xcb_property_notify_event_t&>(*event);
        const auto kind = event->response_type & 0x7F;
        clicks += kind == XCB_BUTTON_PRESS;
        // Keys that are grabbed for a moment leave the focus where it is.
        EXPECT_FALSE(kind == XCB_FOCUS_OUT && focus.mode == XCB_NOTIFY_MODE_NORMAL);
        EXPECT_FALSE(kind == XCB_PROPERTY_NOTIFY && property.atom == x.atom("_NET_ACTIVE_WINDOW"));
    }
    EXPECT_EQ(clicks, 1);
}

} // namespace tests
