#include "Core/LocalizationManager.h"
#include "Support/HeadlessTest.h"
#include "Support/Streams.h"
#include "main/AppDelegate.h"
#include "main/Launch.h"

using namespace lumarin;
using namespace tests;
using platform::Menu;
using platform::MenuItem;
using platform::headless::ScriptedAnswer;
using LoginStatus = platform::LoginItem::Status;

namespace {

// A line for each item: "-" for a separator, "*" before what is checked, "#" before what cannot be chosen.
std::string picture(const Menu& menu, const std::string& indent = "") {
    std::string lines;
    for (const auto& item : menu.items) {
        lines += indent
                 + (item.isSeparator ? "-"
                    : item.isChecked ? "*"
                    : item.isEnabled ? ""
                                     : "#")
                 + item.title + (item.keyEquivalent.empty() ? "" : " [" + item.keyEquivalent + "]") + "\n";
        if (item.submenu)
            lines += picture(*item.submenu, indent + "  ");
    }
    return lines;
}

// The whole program, launched on a machine in memory.
class Launched : public HeadlessTest {
protected:
    void launch() {
        std::filesystem::create_directories(dataFile("").parent_path());
        beginLog();
        host.application().delegate = delegate;
        host.application().run();
        host.advance(0ms);
    }

    const Menu& menu() const { return *host.bar.menu; }

    const MenuItem& item(const std::string& start, const Menu& in) const {
        const auto found = std::ranges::find_if(
            in.items, [&](const MenuItem& each) { return each.title.starts_with(start); });
        if (found == in.items.end())
            throw std::runtime_error("There is no item " + start);
        return *found;
    }
    const MenuItem& item(const std::string& start) const { return item(start, menu()); }

    // Chooses as a click does: the menu may be replaced meanwhile.
    void choose(const std::string& parent, const std::string& start) {
        const auto shown = host.bar.menu;
        const auto& chosen = item(start, *item(parent).submenu);
        chosen.action(chosen);
    }
    void choose(const std::string& start) {
        const auto shown = host.bar.menu;
        item(start).action(item(start));
    }

    std::string log() const { return bytesOf(dataFile("debug.log")); }

    std::shared_ptr<AppDelegate> delegate = std::make_shared<AppDelegate>();
};

const std::string hints = "-\n#Hold Fn (or Right Ctrl) to translate, release to insert\n"
                          "#Esc cancels; Undo brings your text back\n-\nQuit Lumarin [q]\n";

} // namespace

TEST_F(Launched, TellsTheHostItsLanguageBeforeItIsLaunched) {
    host.userDefaults().set("Lumarin.language", "zh");
    runApp();
    EXPECT_EQ(host.application().localization(), "zh-Hans");
    LocalizationManager::shared().setLanguage(LocalizationManager::Language::en);
    EXPECT_EQ(host.application().localization(), "en");
}

TEST_F(Launched, ShowsInItsMenuWhatWasChosenBefore) {
    std::filesystem::create_directories(dataFile("").parent_path());
    folder.write("Application Support/Lumarin/config.json",
                 R"({"mode": "ai", "targetLang": "japanese", "style": "friendly", "other": "kept"})");
    launch();
    EXPECT_EQ(picture(menu()), R"(#Ready — AI, into Japanese
-
Translation Mode: AI
  Basic  Quick, literal translation
  *AI  Reads like a native speaker wrote it, with your style and trade terms
Translate Into: Japanese
  English
  Chinese (Simplified)
  *Japanese
  Korean
  French
  Spanish
  German
  Russian
  Arabic
  Portuguese
Style: 😊 Friendly
  👔 Formal
  😎 Casual
  *😊 Friendly
  ⚡ Direct
Interface Language
  *Same as System
  简体中文
  English
-
*Launch at Login
Check for Updates…
Create Diagnostics Report…
)" + hints);
    EXPECT_EQ(item("Quit").command, "terminate:");

    choose("Translation Mode", "Basic");
    EXPECT_EQ(picture(menu()).find("Style"), std::string::npos);
    EXPECT_TRUE(item("Basic", *item("Translation Mode: Basic").submenu).isChecked);
    choose("Interface", "简体中文");
    EXPECT_TRUE(
        picture(menu()).starts_with("#已就绪 · 基础 · 译为日语\n-\n翻译模式: 基础\n  *基础  快速直译\n"));
}

TEST_F(Launched, KeepsAndUsesWhatIsChosenInTheMenu) {
    launch();
    choose("Translate Into", "German");
    choose("Style", "⚡ Direct");
    EXPECT_TRUE(item("Translate Into: German", menu()).submenu->items.at(6).isChecked);
    EXPECT_TRUE(item("Style: ⚡ Direct", menu()).submenu->items.at(3).isChecked);
    EXPECT_EQ(nlohmann::json::parse(bytesOf(dataFile("config.json"))),
              nlohmann::json({{"targetLang", "german"}, {"style", "direct"}}));

    host.applications.frontmost = {7, "Editor"};
    host.field.setText("请报价");
    host.network.respond = [](const auto&) { return streamed({"Bitte"}, 100ms); };
    std::vector<std::string> icons;
    host.keys.pressFn();
    for (int i = 0; i < 40; ++i) {
        if (icons.empty() || icons.back() != host.bar.shown.name)
            icons.push_back(host.bar.shown.name);
        if (i == 20)
            host.keys.releaseFn();
        host.advance(50ms);
    }
    EXPECT_EQ(icons, (std::vector<std::string>{"character.bubble", "text.magnifyingglass",
                                               "arrow.triangle.2.circlepath", "eye", "character.bubble"}));
    EXPECT_EQ(host.bar.shown.accessibilityDescription, "Lumarin");
    EXPECT_EQ(nlohmann::json::parse(host.network.requests.back().body).at("target_language"), "DE");
}

TEST_F(Launched, OpensItsMenuWhenStartedAgainUnlessItIsAboutToType) {
    delegate->applicationDidReopen();
    launch();
    delegate->applicationDidReopen();
    EXPECT_EQ(host.bar.clicks, 1);

    host.applications.frontmost = {7, "Editor"};
    host.field.setText("请报价");
    host.network.respond = [](const auto&) { return streamed({"Please quote"}, 100ms); };
    host.keys.pressFn();
    host.advance(50ms);
    delegate->applicationDidReopen();
    EXPECT_EQ(host.bar.clicks, 1);
    host.advance(1s);
    host.keys.releaseFn();
    host.advance(2s);
    delegate->applicationDidReopen();
    EXPECT_EQ(host.bar.clicks, 2);
}

TEST_F(Launched, StartsAtLoginUnlessToldOtherwise) {
    host.login.failure = "disk full";
    launch();
    EXPECT_FALSE(item("Launch").isChecked);
    choose("Launch");
    EXPECT_FALSE(item("Launch").isChecked);
    host.login.failure.reset();
    choose("Launch");
    EXPECT_TRUE(item("Launch").isChecked);
    choose("Launch");
    EXPECT_FALSE(item("Launch").isChecked);
    EXPECT_EQ(host.login.current, LoginStatus::notRegistered);

    const auto lines = log();
    EXPECT_TRUE(lines.starts_with("=== Lumarin starting ===\n"));
    const auto launched = lines.find("] applicationDidFinishLaunching\n");
    const auto registered = lines.find("] Login item registered\n");
    const auto started = lines.find("] App started\n");
    const auto failed = lines.find("] Login item toggle error: disk full\n");
    EXPECT_LT(launched, registered);
    EXPECT_LT(registered, started);
    EXPECT_LT(started, failed);
    EXPECT_EQ(lines.find("toggle error", failed + 20), std::string::npos);
}

TEST_F(Launched, ReportsWhereTheDiagnosticsAre) {
    std::filesystem::create_directory(folder / "Desktop");
    launch();
    host.alertsShown.answers = {0, 1};
    choose("Create Diagnostics");
    choose("Create Diagnostics");
    ASSERT_EQ(host.applications.revealed.size(), 1U);
    const auto report = host.applications.revealed[0];
    EXPECT_TRUE(std::filesystem::exists(report));
    const auto& told = host.alertsShown.shown.at(0);
    EXPECT_EQ(told.messageText, "Diagnostics report created");
    EXPECT_TRUE(told.informativeText.starts_with("“" + report.filename().string() + "” is on your desktop"));
    EXPECT_EQ(told.buttons, (std::vector<std::string>{"Show File", "Close"}));
    EXPECT_EQ(host.activations, 2);

    std::filesystem::remove_all(folder / "Desktop");
    choose("Create Diagnostics");
    const auto& failed = host.alertsShown.shown.at(2);
    EXPECT_EQ(failed.style, platform::Alert::Style::warning);
    EXPECT_EQ(failed.messageText, "The diagnostics report could not be created");
    EXPECT_TRUE(failed.buttons.empty());
    EXPECT_NE(log().find("] [Diagnostics] write failed: "), std::string::npos);
}

TEST_F(Launched, MarksTheMenuWhenThereIsAnUpdate) {
    launch();
    choose("Check for Updates…");
    host.advance(1s);
    EXPECT_EQ(host.alertsShown.shown.at(0).messageText, "Lumarin could not check for updates");
    delegate->updaterDidFindValidUpdate({});
    EXPECT_NO_THROW(item("🔴 Check for Updates…"));
    delegate->updaterDidNotFindUpdate("");
    EXPECT_NO_THROW(item("🔴 Check for Updates…"));
    choose("Launch");
    EXPECT_NO_THROW(item("Check for Updates…"));
}
