#include "Desktop/KeyboardDisplay.h"
#include "Desktop/WidgetTest.h"
#include "Desktop/WindowManager.h"
#include "Desktop/Windows.h"
#include "Desktop/WindowsHost.h"
#include "Platform/Desktop/X11/Display/PanelEnd.h"
#include "Platform/Kit/Panel.h"
#include "Platform/Kit/Transaction.h"
#include "Platform/Kit/VisualEffectView.h"

#include <xcb/xfixes.h>

namespace platform::desktop {
namespace {

using namespace std::chrono_literals;
using tests::TestProcess;

// Counts what the server was asked to draw.
class CountingView : public VisualEffectView {
public:
    using VisualEffectView::VisualEffectView;
    mutable int frames = 0;

protected:
    void draw(Drawing& drawing, const Rect& bounds) const override {
        ++frames;
        VisualEffectView::draw(drawing, bounds);
    }
};

class WindowServerTest : public WidgetTest {
protected:
    WindowServerTest() { x.reply(xcb_xfixes_query_version_reply, xcb_xfixes_query_version(x, 2, 0)); }

    // Somewhere in the top half of the screen.
    std::shared_ptr<Panel> showPill() {
        auto panel = std::make_shared<Panel>(place, Window::StyleMask::nonactivatingPanel);
        panel->setFloatingPanel(true);
        panel->isOpaque = false;
        panel->setBackgroundColor(Color::clear());
        panel->setContentView(body);
        body->setMaterial(VisualEffect::Material::hudWindow);
        body->layer()->setCornerRadius(22);
        body->layer()->setMasksToBounds(true);
        panel->orderFrontRegardless();
        if (!comesTrue([&] { return isPill(x, frontWindow(x)) && isDark(middle); }))
            throw std::runtime_error("The pill is not shown");
        return panel;
    }

    void work(Duration duration = 50ms) const {
        for (const auto end = tests::Clock::now() + duration; tests::Clock::now() < end;)
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 5);
    }

    // As the screen shows it.
    QColor colorAt(const QPoint& point) const {
        auto image =
            x.reply(xcb_get_image_reply, xcb_get_image(x, XCB_IMAGE_FORMAT_Z_PIXMAP, x.root(),
                                                       static_cast<std::int16_t>(point.x()),
                                                       static_cast<std::int16_t>(point.y()), 1, 1, ~0U));
        const auto* bytes = xcb_get_image_data(image.get());
        return {bytes[2], bytes[1], bytes[0]};
    }
    bool isDark(const QPoint& point) const { return colorAt(point).value() < 80; }

    tests::WindowManager windowManager;
    XConnection x;
    WindowsHost host;
    const Rect place{540, 600, 200, 44};
    // On the screen of 1280 by 800 pixels.
    const QPoint middle{640, 800 - 622};
    const QPoint corner{541, 800 - 643};
    std::shared_ptr<CountingView> body = std::make_shared<CountingView>();
};

TEST_F(WindowServerTest, StaysBeforeWindowsThatComeToTheFrontLater) {
    auto panel = showPill();
    const TestApplication film("film");
    ASSERT_TRUE(becomeFullScreen(x, film.window()));
    EXPECT_TRUE(comesTrue([&] { return isPill(x, frontWindow(x)) && isDark(middle); }));
    work(200ms);
    EXPECT_TRUE(isPill(x, frontWindow(x)));
}

TEST_F(WindowServerTest, DrawsOnlyWhileSomethingMoves) {
    auto panel = showPill();
    work(100ms);
    body->frames = 0;
    work(300ms);
    EXPECT_EQ(body->frames, 0);

    // Many changes, one drawing.
    for (int change = 0; change < 50; ++change)
        body->layer()->setBackgroundColor(Color::white(change / 100.0, 0.5));
    work(100ms);
    EXPECT_EQ(body->frames, 1);

    body->frames = 0;
    {
        const Transaction transaction(500ms);
        body->layer()->setOpacity(0.5F);
    }
    work(700ms);
    // Sixty a second, and not one more; some are lost on a machine that does other things too.
    EXPECT_LE(body->frames, 33);
    EXPECT_GE(body->frames, 15);

    body->frames = 0;
    const BasicAnimation pulse{
        {.keyPath = "opacity", .duration = 1s, .repeatCount = Animation::forever}, 1.0, 0.0};
    body->layer()->addAnimation(pulse, "pulse");
    work(100ms);
    EXPECT_GT(body->frames, 0);
    panel->orderOut();
    body->frames = 0;
    work(200ms);
    EXPECT_EQ(body->frames, 0);
}

TEST_F(WindowServerTest, IsCutOutWithoutACompositorAndCastsAShadowWithOne) {
    const QPoint shadow = middle + QPoint(0, 28);
    // Compositors paint an empty desktop in colours of their own.
    const auto backdrop = xcb_generate_id(x);
    constexpr std::uint32_t whiteAndUnmanaged[] = {0xFFFFFF, 1};
    xcb_create_window(x, XCB_COPY_FROM_PARENT, backdrop, x.root(), 0, 0, 1280, 800, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, whiteAndUnmanaged);
    xcb_map_window(x, backdrop);
    x.flush();
    auto panel = showPill();
    EXPECT_TRUE(isDark(middle));
    EXPECT_EQ(colorAt(corner), QColor(Qt::white));
    EXPECT_EQ(colorAt(shadow), QColor(Qt::white));
    {
        const TestProcess compositor({"picom", "--backend", "xrender", "--config", "/dev/null"}, {});
        EXPECT_TRUE(comesTrue([&] {
            const int value = colorAt(shadow).value();
            return value > 150 && value < 250 && !isDark(corner);
        }));
        EXPECT_TRUE(isDark(middle));
    }
    EXPECT_TRUE(comesTrue([&] { return colorAt(shadow) == QColor(Qt::white); }));
    EXPECT_TRUE(isDark(middle));

    // Invisible is not there at all, but half visible is.
    panel->setAlphaValue(0);
    EXPECT_TRUE(comesTrue([&] { return colorAt(middle) == QColor(Qt::white); }));
    panel->setAlphaValue(0.5);
    EXPECT_TRUE(comesTrue([&] { return isDark(middle); }));
}

TEST_F(WindowServerTest, AsksForBlurWhereItIsDone) {
    const TestProcess compositor({"picom", "--backend", "xrender", "--config", "/dev/null"}, {});
    const auto blurred = x.atom("_KDE_NET_WM_BLUR_BEHIND_REGION");
    ASSERT_TRUE(comesTrue([&] {
        return x.reply(xcb_get_selection_owner_reply, xcb_get_selection_owner(x, x.atom("_NET_WM_CM_S0")))
                   ->owner
               != XCB_NONE;
    }));
    x.setProperty(x.root(), blurred, XCB_ATOM_CARDINAL, std::vector<std::uint32_t>{0});
    x.flush();
    auto panel = showPill();
    const auto values = x.property(frontWindow(x), blurred).value().values();
    ASSERT_EQ(values.size() % 4, 0U);
    auto origin = x.reply(xcb_get_geometry_reply, xcb_get_geometry(x, frontWindow(x)));
    QRect region;
    for (std::size_t index = 0; index < values.size(); index += 4)
        region |= QRect(static_cast<int>(values[index]), static_cast<int>(values[index + 1]),
                        static_cast<int>(values[index + 2]), static_cast<int>(values[index + 3]));
    EXPECT_EQ(region.translated(origin->x, origin->y), QRect(540, 800 - 644, 200, 44));
    EXPECT_GT(values.size(), 40U);
}

TEST_F(WindowServerTest, KnowsTheScreenAndWhatIsFreeOfBars) {
    const auto screen = host.desktop().mainScreen().value();
    EXPECT_EQ(screen.frame, (Rect{0, 0, 1280, 800}));
    EXPECT_EQ(screen.visibleFrame, screen.frame);
    TestApplication bar("bar");
    const std::vector<std::uint32_t> atTheTop{0, 0, 30, 0};
    x.setProperty(bar.window(), x.atom("_NET_WM_STRUT"), XCB_ATOM_CARDINAL, atTheTop);
    x.flush();
    EXPECT_TRUE(comesTrue([&] {
        return host.desktop().mainScreen().value().visibleFrame == Rect{0, 0, 1280, 770};
    }));
}

TEST_F(WindowServerTest, FollowsTheWindowThatHasTheKeyboardFromMonitorToMonitor) {
    const auto frame = [&] {
        const auto screen = host.desktop().mainScreen();
        return screen ? screen->frame : Rect();
    };
    const auto visible = [&] { return host.desktop().mainScreen().value().visibleFrame; };
    run("xrandr --setmonitor left 800/200x600/150+0+0 screen");
    run("xrandr --setmonitor '*right' 480/120x800/200+800+0 none");
    // The primary one is the right one.
    EXPECT_EQ(frame(), (Rect{800, 0, 480, 800}));
    const TestApplication bar("bar");
    const TestApplication writer("writer");
    const auto move = [&](int left) {
        run("xdotool windowmove --sync " + std::to_string(writer.window()) + ' ' + std::to_string(left)
            + " 100");
    };
    move(100);
    EXPECT_TRUE(comesTrue([&] { return frame() == Rect{0, 200, 800, 600}; }));
    move(900);
    EXPECT_TRUE(comesTrue([&] { return frame() == Rect{800, 0, 480, 800}; }));
    // A bar takes from the monitor that it stands on, and not from the one above or beside it.
    const auto reserve = [&](std::vector<std::uint32_t> strut) {
        x.setProperty(bar.window(), x.atom("_NET_WM_STRUT_PARTIAL"), XCB_ATOM_CARDINAL, strut);
        x.flush();
    };
    move(100);
    reserve({0, 0, 30, 0, 0, 0, 0, 0, 800, 1279, 0, 0});
    EXPECT_TRUE(comesTrue([&] { return visible() == Rect{0, 200, 800, 600}; }));
    reserve({0, 0, 30, 0, 0, 0, 0, 0, 0, 799, 0, 0});
    EXPECT_TRUE(comesTrue([&] { return visible() == Rect{0, 200, 800, 570}; }));
    reserve({0, 0, 0, 240, 0, 0, 0, 0, 0, 0, 0, 799});
    EXPECT_TRUE(comesTrue([&] { return visible() == Rect{0, 240, 800, 560}; }));
    move(900);
    EXPECT_TRUE(comesTrue([&] { return visible() == Rect{800, 0, 480, 800}; }));
    // What is on the one stays there when the other goes.
    run("xrandr --delmonitor left");
    EXPECT_EQ(frame(), (Rect{800, 0, 480, 800}));
}

TEST_F(WindowServerTest, StaysOnItsMonitorAndLeavesOneThatGoes) {
    run("xrandr --setmonitor left 800/200x600/150+0+0 none");
    run("xrandr --setmonitor '*right' 480/120x800/200+800+0 screen");
    const TestApplication writer("writer");
    const auto move = [&](int left) {
        run("xdotool windowmove --sync " + std::to_string(writer.window()) + ' ' + std::to_string(left)
            + " 100");
    };
    const auto frame = [&] { return host.desktop().mainScreen().value().frame; };
    move(100);
    EXPECT_TRUE(comesTrue([&] { return frame() == Rect{0, 200, 800, 600}; }));
    auto panel = showPill();
    move(900);
    EXPECT_EQ(frame(), (Rect{0, 200, 800, 600}));
    // 156 points below the top of the one, 240 to the right of its middle.
    run("xrandr --delmonitor left");
    EXPECT_TRUE(comesTrue([&] { return panel->frame() == Rect{1180, 600, 200, 44}; }));
    EXPECT_EQ(frame(), (Rect{800, 0, 480, 800}));
    panel->orderOut();
}

class UsableAreaTest : public WidgetTest {};

TEST_F(UsableAreaTest, IsFreeOfBarsThatNoWindowManagerManages) {
    XConnection x;
    WindowsHost host;
    const TestApplication bar("bar");
    const TestApplication writer("writer");
    const auto set = [&](xcb_window_t window, const char* property, std::vector<std::uint32_t> values) {
        x.setProperty(window, x.atom(property), XCB_ATOM_CARDINAL, values);
        // The host asks on a connection of its own.
        static_cast<void>(x.reply(xcb_get_input_focus_reply, xcb_get_input_focus(x)));
    };
    const auto visible = [&] { return host.desktop().mainScreen().value().visibleFrame; };
    run("xrandr --newmode small 0 1000 0 0 1000 600 0 0 600 && xrandr --addmode screen small");
    run("xrandr --output screen --mode small");
    set(bar.window(), "_NET_WM_STRUT_PARTIAL", {0, 50, 0, 20, 0, 0, 0, 599, 0, 0, 0, 999});
    EXPECT_EQ(visible(), (Rect{0, 220, 950, 580}));
    run("xdotool windowsize --sync " + std::to_string(bar.window()) + " 1000 21");
    set(bar.window(), "_NET_WM_STRUT_PARTIAL", {0, 0, 21, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(visible(), (Rect{0, 200, 1000, 579}));
    run("xrandr --output screen --mode 1280x800");
    set(bar.window(), "_NET_WM_STRUT_PARTIAL", {});

    run("xrandr --setmonitor left 800/200x600/150+0+0 screen");
    run("xrandr --setmonitor '*right' 480/120x800/200+800+0 none");
    const auto expect = [&](std::vector<std::uint32_t> workArea, const Rect& left, const Rect& right) {
        set(x.root(), "_NET_WORKAREA", std::move(workArea));
        run("xdotool windowmove --sync " + std::to_string(writer.window()) + " 100 100");
        EXPECT_EQ(visible(), left);
        run("xdotool windowmove --sync " + std::to_string(writer.window()) + " 900 100");
        EXPECT_EQ(visible(), right);
    };
    const Rect wholeLeft{0, 200, 800, 600};
    const Rect wholeRight{800, 0, 480, 800};
    expect({0, 30, 1280, 770}, wholeLeft, {800, 0, 480, 770});
    expect({0, 0, 1280, 570}, {0, 230, 800, 570}, wholeRight);
    expect({860, 0, 420, 800}, wholeLeft, {860, 0, 420, 800});
    set(bar.window(), "_NET_WM_STRUT_PARTIAL", {0, 0, 30, 0, 0, 0, 0, 0, 0, 799, 0, 0});
    expect({0, 30, 1280, 770}, {0, 200, 800, 570}, wholeRight);
    EXPECT_EQ(endOfPanel(x), QRect(736, 0, 64, 30));
    set(x.root(), "_GTK_WORKAREAS_D0", {800, 25, 480, 775, 0, 0, 740, 600});
    expect({0, 30, 1280, 770}, {0, 200, 740, 600}, {800, 0, 480, 775});
}

} // namespace
} // namespace platform::desktop
