#include "Acceptance/AcceptanceTest.h"
#include "Acceptance/Panel.h"
#include "Platform/Desktop/SymbolDrawing.h"
#include "Support/Files.h"

#include <QCoreApplication>
#include <QPainter>

namespace tests {
namespace {

// The shape of an icon, whatever its colour.
QImage shapeOf(const QImage& picture) {
    return picture.convertToFormat(QImage::Format_Alpha8);
}

QImage shapeOf(const std::string& symbol, int side) {
    const platform::Bundle bundle(LUMARIN_RESOURCES);
    QImage picture(side, side, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    platform::desktop::SymbolDrawing(bundle, symbol, Qt::black).paint(painter, picture.rect());
    painter.end();
    return shapeOf(picture);
}

// A display that may have a panel, and the program that may be in it.
class AcceptanceStatusItem : public testing::Test {
protected:
    bool shows(const std::string& symbol) const {
        constexpr int side = 22;
        return comesTrue([&] { return shapeOf(panel.icon(side)) == shapeOf(symbol, side); });
    }

    bool has(const std::string& line) const {
        return comesTrue([&] {
            const auto lines = panel.menu();
            return std::ranges::any_of(lines, [&](const auto& one) { return one.label == line; });
        });
    }

    int argumentCount = 1;
    std::string word = "test";
    char* arguments = word.data();
    QCoreApplication application{argumentCount, &arguments};
    Display display;
    Panel panel{display};
    ServiceDouble service;
    Person person;
};

} // namespace

TEST_F(AcceptanceStatusItem, ComesToALatePanelAndFollowsAGesture) {
    AcceptanceProgram program(display, service);
    EXPECT_NE(program.process().output().find("no status bar yet"), std::string::npos);
    panel.appear();
    panel.awaitItem();
    EXPECT_TRUE(shows("character.bubble"));
    service.thinking = 1s;
    const SlowEditorClient editor(display);
    editor.setUp("Hello", 0, 0);
    person.press(Key::rightControl);
    program.process().awaitLine("[SM] Translating");
    EXPECT_TRUE(shows("arrow.triangle.2.circlepath"));
    program.process().awaitLine("[SM] Done: ");
    EXPECT_TRUE(shows("eye"));
    person.release(Key::rightControl);
    program.process().awaitLine("[SM] Injected");
    EXPECT_TRUE(shows("character.bubble"));
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
    EXPECT_EQ(program.process().output().find("no status bar yet"), std::string::npos);
    EXPECT_TRUE(has("Translate Into: English"));
    EXPECT_TRUE(panel.line("English").isChecked);
    EXPECT_FALSE(panel.line("Hold Fn").isEnabled);
    panel.choose(panel.line("Japanese"));
    EXPECT_TRUE(has("Translate Into: Japanese"));
    EXPECT_TRUE(panel.line("Japanese").isChecked);
    EXPECT_FALSE(panel.line("English").isChecked);
    EXPECT_EQ(bytesOf(display.home / "data/Lumarin/config.json"), R"({"targetLang":"japanese"})");
    const SlowEditorClient editor(display);
    editor.setUp("Hello", 0, 0);
    program.gesture(person);
    EXPECT_NE(service.lastRequest().find("Japanese"), std::string::npos) << service.lastRequest();

    panel.choose(panel.line("简体中文"));
    EXPECT_TRUE(has("目标语言: 日语"));

    // Also while an alert is open: the report about no desktop folder.
    panel.choose(panel.line("生成诊断报告"));
    display.awaitFrontWindow("lumarin");
    panel.choose(panel.line("退出"));
    EXPECT_EQ(program.process().awaitEnd(1s), 0);
}

} // namespace tests
