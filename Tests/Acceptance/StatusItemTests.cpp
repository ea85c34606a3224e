#include "Acceptance/AcceptanceTest.h"
#include "Acceptance/Panel.h"
#include "Desktop/QtProgram.h"
#include "Support/Files.h"

#include <QCoreApplication>

namespace tests {
namespace {

// A display that may have a panel, and the program that may be in it.
class AcceptanceStatusItem : public testing::Test {
protected:
    // The icon, once it is another than it was.
    QImage nextIcon(const QImage& last) const {
        QImage icon;
        EXPECT_TRUE(comesTrue([&] { return !(icon = panel.icon(22)).isNull() && icon != last; }));
        return icon;
    }

    bool has(const std::string& line) const {
        return comesTrue([&] {
            const auto lines = panel.menu();
            return std::ranges::any_of(lines, [&](const auto& one) { return one.label == line; });
        });
    }

    QtProgram<QCoreApplication> application;
    Display display;
    Panel panel{display};
    ServiceDouble service;
    Person person;
};

} // namespace

TEST_F(AcceptanceStatusItem, ComesToALatePanelAndFollowsAGesture) {
    AcceptanceProgram program(display, service);
    program.process().awaitLine("no status bar yet");
    panel.appear();
    panel.awaitItem();
    const auto ready = nextIcon({});
    service.thinking = 1s;
    const TestEditor editor;
    editor.setUp("Hello");
    person.press(Key::rightControl);
    program.process().awaitLine("[SM] Translating");
    const auto working = nextIcon(ready);
    program.process().awaitLine("[SM] Done: ");
    const auto preview = nextIcon(working);
    EXPECT_NE(preview, ready);
    person.release(Key::rightControl);
    program.process().awaitLine("[SM] Injected");
    EXPECT_EQ(nextIcon(preview), ready);
}

TEST_F(AcceptanceStatusItem, WritesAReportAndRevealsIt) {
    panel.appear();
    AcceptanceProgram program(display, service);
    panel.awaitItem();
    std::filesystem::create_directories(display.home / "Desktop");
    panel.choose(panel.line("Create Diagnostics"));
    display.awaitFrontWindow("lumarin");
    person.strike({Key::enter});
    EXPECT_TRUE(comesTrue([&] { return !panel.revealed().empty(); }));
    const std::filesystem::path report(panel.revealed().substr(std::string("file://").size()));
    EXPECT_EQ(report.parent_path(), display.home / "Desktop");
    EXPECT_TRUE(bytesOf(report).starts_with("=== Lumarin Diagnostics ==="));
}

TEST_F(AcceptanceStatusItem, ChangesTheLanguageAndQuits) {
    panel.appear();
    AcceptanceProgram program(display, service);
    panel.awaitItem();
    EXPECT_TRUE(has("Translate Into: English"));
    EXPECT_TRUE(panel.line("English").isChecked);
    EXPECT_FALSE(panel.line("Hold Fn").isEnabled);
    panel.choose(panel.line("Japanese"));
    EXPECT_TRUE(has("Translate Into: Japanese"));
    EXPECT_TRUE(panel.line("Japanese").isChecked);
    EXPECT_FALSE(panel.line("English").isChecked);
    EXPECT_EQ(bytesOf(display.home / "data/Lumarin/config.json"), R"({"targetLang":"japanese"})");
    panel.choose(panel.line("简体中文"));
    EXPECT_TRUE(has("目标语言: 日语"));

    EXPECT_EQ(program.process().output().find("no status bar yet"), std::string::npos);

    // Also while an alert is open: the report about no desktop folder.
    panel.choose(panel.line("生成诊断报告"));
    display.awaitFrontWindow("lumarin");
    panel.choose(panel.line("退出"));
    EXPECT_EQ(program.process().awaitEnd(1s), 0);
}

} // namespace tests
