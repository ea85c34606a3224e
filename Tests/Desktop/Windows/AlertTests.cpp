#include "Desktop/WidgetTest.h"
#include "Desktop/WindowManager.h"
#include "Platform/Desktop/Windows/DesktopAlerts.h"
#include "Platform/Desktop/X11/Keys/TrustObstacle.h"
#include "Platform/Desktop/X11/Server/ActiveWindow.h"

#include <QAbstractButton>
#include <QDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QTimer>
#include <QWindow>

namespace platform::desktop {
namespace {

class AlertTest : public WidgetTest {
protected:
    static void strike(QWidget& window, int key) {
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        QCoreApplication::sendEvent(&window, &press);
    }

    // What an alert with these buttons gives when a person does that with it.
    std::size_t choice(const std::vector<std::string>& buttons, std::function<void(AlertWindow&)> act) {
        QTimer::singleShot(0, [act = std::move(act)] { act(*windowOf<AlertWindow>()); });
        return alerts.runModal({Alert::Style::warning, "Title", "<b>Text</b>", buttons});
    }

    const tests::WindowManager windowManager;
    const XConnection x;
    const Bundle bundle{LUMARIN_RESOURCES};
    Application application;
    const HostTexts texts{bundle, application};
    DesktopAlerts alerts{
        [this](QWindow& window) { bringToFront(x, static_cast<xcb_window_t>(window.winId())); }, texts,
        bundle};
};

TEST_F(AlertTest, GivesThePlaceOfTheButtonThatWasChosen) {
    const std::vector<std::string> three{"Download", "Notes", "Later"};
    EXPECT_EQ(choice(three, [](auto& window) { strike(window, Qt::Key_Return); }), 0);
    EXPECT_EQ(choice(three, [](auto& window) { strike(window, Qt::Key_Escape); }), 2);
    EXPECT_EQ(choice(three, [](auto& window) { window.close(); }), 2);
    EXPECT_EQ(choice(three,
                     [](auto& window) {
                         for (auto* button : window.buttons())
                             if (button->text() == "Notes")
                                 button->click();
                     }),
              1);
}

TEST_F(AlertTest, ComesToTheFrontWithItsTextAsItIs) {
    application.localization = [] { return "zh-Hans"; };
    choice({}, [&](auto& window) {
        EXPECT_TRUE(comesTrue([&] { return activeWindow(x) == window.winId(); }));
        ASSERT_EQ(window.buttons().size(), 1);
        EXPECT_EQ(window.buttons()[0]->text(), "好");
        EXPECT_TRUE(comesTrue([&] { return window.buttons()[0]->hasFocus(); }));
        EXPECT_EQ(window.icon(), QMessageBox::Warning);
        for (const auto* label : window.template findChildren<QLabel*>())
            EXPECT_TRUE(label->text() != "<b>Text</b>" || label->textFormat() == Qt::PlainText);
        window.close();
    });
}

TEST_F(AlertTest, LetsTheLatestOfSeveralBeAnsweredFirst) {
    std::string order;
    QTimer::singleShot(0, [&] {
        auto* first = windowOf<AlertWindow>();
        order += std::to_string(choice({"a", "b"}, [&](auto& second) {
            EXPECT_FALSE(first->isEnabled());
            strike(second, Qt::Key_Return);
        }));
        EXPECT_TRUE(first->isEnabled());
        strike(*first, Qt::Key_Escape);
    });
    order += std::to_string(alerts.runModal({Alert::Style::informational, "First", "", {"a", "b", "c"}}));
    EXPECT_EQ(order, "02");
}

TEST_F(AlertTest, EndsWithTheProgram) {
    QTimer::singleShot(0, [&] { QCoreApplication::exit(); });
    QTimer::singleShot(0, [&] {
        EXPECT_EQ(alerts.runModal({Alert::Style::informational, "Open", "", {"a", "b"}}), 1);
    });
    EXPECT_EQ(QCoreApplication::exec(), 0);
}

TEST_F(AlertTest, TellsEachThingOnceAtATime) {
    for (int time = 0; time < 3; ++time)
        for (const char* text : {"One", "Other"})
            alerts.tell({Alert::Style::warning, "Missing", text, {}});
    EXPECT_EQ(std::ranges::count_if(QApplication::topLevelWidgets(),
                                    [](auto* window) { return dynamic_cast<AlertWindow*>(window); }),
              2);
    windowOf<AlertWindow>()->close();
    windowOf<AlertWindow>()->close();
    EXPECT_TRUE(comesTrue([&] { return QApplication::topLevelWidgets().empty(); }));
}

TEST(TrustObstacle, IsWhatTheDisplayLacks) {
    unsetenv("XDG_SESSION_TYPE");
    for (const auto& [options, obstacle] :
         {std::pair("", ""), std::pair("-extension XTEST", "trust.typing")}) {
        const tests::XServer display(options);
        const char* found = trustObstacle(XConnection());
        EXPECT_STREQ(found ? found : "", obstacle);
    }
}

TEST_F(AlertTest, ShowsProgressThatCanBeCancelled) {
    std::unique_ptr<ProgressWindow> progress;
    progress = alerts.showProgress({Alert::Style::informational, "Downloading", "", {}},
                                   [&] { progress = nullptr; });
    auto* window = windowOf<QDialog>();
    const auto* bar = window->findChild<QProgressBar*>();
    EXPECT_EQ(bar->maximum(), 0);
    progress->setFraction(0.25);
    EXPECT_EQ(4 * bar->value(), bar->maximum());
    strike(*window, Qt::Key_Escape);
    EXPECT_TRUE(comesTrue([&] { return !progress && QApplication::topLevelWidgets().empty(); }));
}

} // namespace
} // namespace platform::desktop
