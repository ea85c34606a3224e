#include "Desktop/KeyboardDisplay.h"
#include "Desktop/OffscreenTest.h"
#include "Desktop/WidgetTest.h"
#include "Desktop/WindowManager.h"
#include "Desktop/WindowsHost.h"
#include "Platform/Desktop/Pictures/LayerChanges.h"
#include "Platform/Desktop/Pictures/LayerPainter.h"
#include "Platform/Kit/TextField.h"

#include <random>

#include <QPainter>

namespace platform::desktop {
namespace {

class TitledWindowTest : public WidgetTest {
protected:
    std::shared_ptr<Button> addButton(const std::string& title, double y) {
        auto button = std::make_shared<Button>(title, [&](Button& one) { pressed += one.title(); });
        button->setFrame({50, y, 100, 28});
        window.contentView()->addSubview(button);
        return button;
    }

    // What a person types; the letters of the buttons it has pressed.
    std::string type(const std::string& keys, const std::string& expected) {
        pressed.clear();
        run("xdotool key " + keys);
        comesTrue([&] { return pressed == expected; });
        return pressed;
    }

    tests::WindowManager windowManager;
    WindowsHost host;
    Window window{{0, 0, 200, 120}, Window::StyleMask::titled | Window::StyleMask::closable};
    std::string pressed;
};

} // namespace

TEST_F(TitledWindowTest, StandsInAFrameAndIsUsedByTheKeyboardUntilItIsClosed) {
    addButton("m", 60)->setKeyEquivalent("\r");
    addButton("o", 20);
    auto leaving = addButton("x", 90);
    leaving->setKeyEquivalent("\r");
    leaving->setAlphaValue(0);
    window.title = "A window";
    window.center();
    for (int time = 0; time < 2; ++time) {
        window.makeKeyAndOrderFront();
        ASSERT_TRUE(comesTrue([&] { return QApplication::focusWidget() != nullptr; }));
        const auto* shown = QApplication::activeWindow();
        EXPECT_EQ(shown->windowTitle(), "A window");
        EXPECT_EQ(shown->geometry(), QRect(540, 340, 200, 120));
        EXPECT_EQ(shown->minimumSize(), shown->maximumSize());

        EXPECT_EQ(type("Return", "m"), "m");
        EXPECT_EQ(type("space", "m"), "m");
        EXPECT_EQ(type("Tab space Return", "om"), "om");
        EXPECT_EQ(type("Tab space Escape shift+Tab space", "mo"), "mo") << "round to the first, and back";
        EXPECT_TRUE(window.isVisible());
        run("xdotool key alt+F4");
        EXPECT_TRUE(comesTrue([&] { return !window.isVisible(); }));
        EXPECT_TRUE(comesTrue([] { return QApplication::topLevelWidgets().empty(); }));
    }
}

namespace {

// A layer somewhere, with something in it and others below it.
LayerPresentation randomLayer(std::mt19937& random, int depth) {
    const auto below = [&](int limit) { return std::uniform_int_distribution(0, limit - 1)(random); };
    LayerPresentation layer;
    layer.position = {below(200) * 0.9, below(150) * 1.1};
    layer.size = {4.0 + below(90), 4.0 + below(60)};
    layer.opacity = below(3) == 0 ? 0.5 : 1;
    layer.rotation = below(4) == 0 ? below(60) / 10.0 : 0;
    layer.masksToBounds = below(3) == 0;
    layer.cornerRadius = below(8);
    layer.borderWidth = below(2);
    layer.borderColor = Color::calibrated(1, 0, 0, 1);
    layer.backgroundColor = Color::calibrated(below(10) / 10.0, below(10) / 10.0, 1, below(2));
    if (below(2))
        layer.drawing.lines.push_back(
            {"Ågy words", Font::systemFont(12), Color::white(0, 1), layer.bounds(), TextAlignment::center});
    for (int count = depth * below(3); count > 0; --count)
        layer.sublayers.push_back(randomLayer(random, depth - 1));
    return layer;
}

using LayerChangesTest = OffscreenTest;

} // namespace

TEST_F(LayerChangesTest, NothingIsPaintedAnewOutsideOfWhatHasChanged) {
    std::mt19937 random(1);
    const PixelGrid grid{{1, 1}, {0, 150}};
    LayerPainter painter;
    const auto painted = [&](const LayerPresentation& layer) {
        QImage picture(200, 150, QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::white);
        painter.paint(layer, picture, {0, 0}, grid, 1, Backdrop::none);
        return picture;
    };
    int smaller = 0;
    for (int round = 0; round < 300; ++round) {
        auto before = randomLayer(random, 3);
        auto after = before;
        auto* changed = &after;
        while (!changed->sublayers.empty() && random() % 4 != 0)
            changed = &changed->sublayers[random() % changed->sublayers.size()];
        *changed = randomLayer(random, 1);
        const auto area = changedArea(before, after, grid).toAlignedRect() & QRect(0, 0, 200, 150);
        smaller += area.size() != QSize(200, 150);

        auto patched = painted(before);
        QPainter(&patched).drawImage(area.topLeft(), painted(after), area);
        ASSERT_EQ(patched, painted(after)) << round;
    }
    EXPECT_GT(smaller, 50);
}

} // namespace platform::desktop
