#include "Desktop/WidgetTest.h"
#include "Platform/Desktop/Painting/SymbolDrawing.h"
#include "Platform/Desktop/Tray/DesktopStatusItem.h"
#include "Platform/Desktop/X11/Display/X11Panel.h"
#include "Platform/Desktop/X11/Server/InputGrabs.h"

#include <QKeyEvent>
#include <QPointer>
#include <QScreen>

namespace platform::desktop {
namespace {

using StatusItemTest = WidgetTest;
using NativeMenuTest = WidgetTest;

const Bundle& resources() {
    static const Bundle bundle(LUMARIN_RESOURCES);
    return bundle;
}

// A tray in the upper right corner, with a border to the icons.
tests::TestProcess trayOf(const std::string& color) {
    return {{"trayer", "--edge", "top", "--align", "right", "--height", "28", "--widthtype", "request",
             "--SetDockType", "true", "--transparent", "true", "--alpha", "0", "--tint", color},
            {}};
}

// How much of that corner is of a gray in between, in percent.
int share(int from, int until) {
    constexpr int side = 24;
    auto* screen = QGuiApplication::primaryScreen();
    const auto picture = screen->grabWindow(0, screen->size().width() - side, 2, side, side).toImage();
    int count = 0;
    for (int place = 0; place < side * side; ++place)
        if (const int gray = qGray(picture.pixel(place % side, place / side)); gray >= from && gray < until)
            ++count;
    return 100 * count / (side * side);
}

MenuItem itemOf(const std::string& title) {
    MenuItem item;
    item.title = title;
    return item;
}

MenuItem actionOf(const std::string& title, std::function<void()> action) {
    auto item = itemOf(title);
    item.action = [action = std::move(action)](const MenuItem&) { action(); };
    return item;
}

MenuItem quitItem() {
    auto item = itemOf("Quit");
    item.command = "terminate:";
    item.keyEquivalent = "q";
    return item;
}

std::shared_ptr<Menu> menuOf(std::vector<MenuItem> items) {
    return std::make_shared<Menu>(Menu{"", std::move(items)});
}

TEST_F(StatusItemTest, ComesToALateTrayAndIsSeenOnWhateverColorThatHas) {
    const XConnection x;
    X11Panel panel(x);
    DesktopStatusItem item(panel, resources(), [](const std::string&) {});
    item.setImage({"character.bubble", "Lumarin"});
    item.setMenu(menuOf({quitItem()}));
    EXPECT_FALSE(item.isVisible());
    const auto placeOfMenu = [&] {
        item.performClick();
        auto* menu = QApplication::activePopupWidget();
        return menu && menu->close() ? menu->geometry() : QRect();
    };
    constexpr QPoint pointer(200, 300);
    QCursor::setPos(pointer);
    EXPECT_EQ(placeOfMenu().topLeft(), pointer);
    {
        auto tray = trayOf("0x101010");
        // The tray may have such colors for a moment as it comes.
        EXPECT_TRUE(comesTrue([&] { return item.isVisible() && share(200, 256) > 5 && share(0, 60) > 50; }));
        // The icon is seen before its tray has told where it is.
        EXPECT_TRUE(comesTrue([&] {
            const auto place = placeOfMenu();
            return place.right() > 1270 && place.top() < 40;
        }));
    }
    auto tray = trayOf("0xf0f0f0");
    EXPECT_TRUE(comesTrue([&] { return share(0, 80) > 5 && share(200, 256) > 50; }));
}

TEST_F(StatusItemTest, OpensItsMenuOnceItCanBeClosedAgain) {
    const XConnection x;
    X11Panel panel(x);
    DesktopStatusItem item(panel, resources(), [](const std::string&) {});
    item.setMenu(menuOf({quitItem()}));
    // As a program that watches for a key, while the key is held.
    const XConnection other;
    constexpr auto async = XCB_GRAB_MODE_ASYNC;
    other.reply(xcb_grab_keyboard_reply,
                xcb_grab_keyboard(other, 0, other.root(), XCB_CURRENT_TIME, async, async));
    item.performClick();
    EXPECT_FALSE(QApplication::activePopupWidget());
    other.errorOf(xcb_ungrab_keyboard_checked(other, XCB_CURRENT_TIME));
    ASSERT_TRUE(comesTrue([] { return QApplication::activePopupWidget() != nullptr; }));
    EXPECT_FALSE(isInputFree(other));
    EXPECT_TRUE(QApplication::activePopupWidget()->close());
    EXPECT_TRUE(comesTrue([&] { return isInputFree(other); }));
}

TEST_F(StatusItemTest, HasItsDrawingsInOneColorAndWhollyInside) {
    for (const char* name : {"character.bubble", "text.magnifyingglass", "arrow.triangle.2.circlepath", "eye",
                             "checkmark.circle", "arrow.uturn.backward", "checkmark.circle.fill"})
        for (int side : {16, 22, 64}) {
            SCOPED_TRACE(name + (" at " + std::to_string(side)));
            const auto picture = SymbolDrawing(resources(), name, Qt::red)
                                     .icon()
                                     .pixmap(side)
                                     .toImage()
                                     .convertToFormat(QImage::Format_ARGB32);
            int seen = 0;
            for (int place = 0; place < side * side; ++place) {
                const QPoint point(place % side, place / side);
                const auto pixel = picture.pixel(point);
                seen += qAlpha(pixel);
                EXPECT_TRUE(qAlpha(pixel) < 8
                            || (qRed(pixel) > 220 && qGreen(pixel) < 35 && qBlue(pixel) < 35));
                const bool isEdge = point.x() % (side - 1) == 0 || point.y() % (side - 1) == 0;
                EXPECT_TRUE(!isEdge || qAlpha(pixel) < 200) << point.x() << ',' << point.y();
            }
            EXPECT_GT(seen / 255, side * side / 8);
        }
}

void strike(QWidget& widget, Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QKeyEvent press(QEvent::KeyPress, key, modifiers);
    QCoreApplication::sendEvent(&widget, &press);
}

// As a person opens it, its submenu at that line too.
QMenu* open(NativeMenu& menu, int line) {
    menu.popup({10, 10});
    menu.setActiveAction(menu.actions()[line]);
    strike(menu, Qt::Key_Right);
    return menu.actions()[line]->menu();
}

std::string linesOf(const QMenu& menu) {
    std::string lines;
    for (const auto* line : menu.actions()) {
        lines += (line->isSeparator() ? "---" : line->text().toStdString())
                 + (line->isEnabled() ? "" : " off") + (line->isChecked() ? " marked" : "")
                 + (line->menu() ? " > (" + linesOf(*line->menu()) + ")" : "") + "; ";
    }
    return lines;
}

TEST_F(NativeMenuTest, LooksLikeTheMenuItShowsAndKnowsItsKeys) {
    auto separator = itemOf("");
    separator.isSeparator = true;
    auto marked = actionOf("One", [] {});
    marked.isChecked = true;
    auto refused = actionOf("No", [] {});
    refused.isEnabled = false;
    auto submenu = itemOf("Choice");
    submenu.submenu = menuOf({marked, refused});
    std::string commands;
    NativeMenu menu([&](const std::string& command) { commands += command; });
    menu.change(menuOf({itemOf("A & B"), separator, submenu, quitItem()}));
    auto* below = open(menu, 2);
    EXPECT_EQ(linesOf(menu), "A && B off; --- off; Choice > (One marked; No off; ); Quit; ");

    EXPECT_TRUE(below->isVisible());
    strike(*below, Qt::Key_Q, Qt::ControlModifier);
    EXPECT_TRUE(comesTrue([&] { return commands == "terminate:"; })) << commands;
    EXPECT_FALSE(menu.isVisible() || below->isVisible());
}

TEST_F(NativeMenuTest, TakesAnotherMenuWhileItIsOpenAndFromItsOwnItem) {
    NativeMenu menu([](const std::string&) {});
    auto submenu = itemOf("Choice");
    submenu.submenu = menuOf({actionOf("Again", [&] {
        menu.change(menuOf({itemOf("never seen")}));
        menu.change(menuOf({actionOf("second", [] {})}));
        QCoreApplication::processEvents();
        EXPECT_EQ(linesOf(menu), "second; ");
    })});
    const auto first = menuOf({submenu});
    menu.change(first);
    strike(*open(menu, 0), Qt::Key_Return);
    EXPECT_TRUE(comesTrue([&] { return linesOf(menu) == "second; "; })) << linesOf(menu);

    menu.change(first);
    const QPointer<QMenu> below = open(menu, 0);
    EXPECT_TRUE(below->isVisible());
    menu.change(menuOf({itemOf("third")}));
    EXPECT_TRUE(comesTrue([&] { return linesOf(menu) == "third off; "; })) << linesOf(menu);
    EXPECT_TRUE(menu.isVisible());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(below);
    strike(menu, Qt::Key_Down);
}

} // namespace
} // namespace platform::desktop
