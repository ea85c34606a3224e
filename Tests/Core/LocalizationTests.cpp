#include "Core/LocalizationManager.h"
#include "Models/TargetLanguage.h"
#include "Models/TranslationState.h"
#include "Platform/Foundation/StringsFile.h"
#include "Support/HeadlessTest.h"

using namespace lumarin;
using namespace tests;
using Language = LocalizationManager::Language;

namespace {

std::vector<std::string> directives(const std::string& text) {
    std::vector<std::string> found;
    for (auto at = text.find('%'); at != std::string::npos; at = text.find('%', at + 1))
        found.push_back(text.substr(at, 2));
    return found;
}

} // namespace

TEST(StringTables, HoldTheSameKeysWithTheSamePlaceholders) {
    auto table = [](const char* name) {
        auto parsed = platform::parseStrings(
            bytesOf(std::string(LUMARIN_RESOURCES "/") + name + "/Localizable.strings"));
        return parsed.value();
    };
    auto english = table("en.lproj");
    auto chinese = table("zh-Hans.lproj");
    const std::map<std::string, std::size_t> formats{
        {"menu.status.ready", 2}, {"diagnostics.done.body", 1}, {"error.network", 1}, {"error.api", 1}};
    for (const auto& [key, text] : english) {
        ASSERT_TRUE(chinese.contains(key)) << key;
        auto expected = formats.contains(key) ? formats.at(key) : 0;
        for (const auto& translated : {text, chinese.at(key)}) {
            EXPECT_FALSE(translated.empty()) << key;
            EXPECT_EQ(directives(translated), std::vector<std::string>(expected, "%@")) << key;
        }
    }
    EXPECT_EQ(english.size(), chinese.size());
    for (auto value : allCases<TargetLanguage>())
        EXPECT_TRUE(english.contains("lang." + std::string(rawValue(value))));
    for (auto value : allCases<StylePreset>())
        EXPECT_TRUE(english.contains("style." + std::string(rawValue(value))));
    for (auto value : allCases<TranslationMode>())
        EXPECT_TRUE(english.contains("mode." + std::string(rawValue(value)) + ".desc"));
}

class Localization : public HeadlessTest {
protected:
    LocalizationManager& localization = LocalizationManager::shared();
};

TEST_F(Localization, ChoosesTheTable) {
    using Languages = std::vector<std::string>;
    const std::tuple<std::string, Languages, std::string> cases[] = {
        {"", {"zh-Hant-TW", "en"}, "zh-Hans"}, {"", {"ja-JP"}, "en"},        {"", {}, "en"},
        {"fr", {"zh-Hans-CN"}, "zh-Hans"},     {"zh", {"en-US"}, "zh-Hans"}, {"en", {"zh"}, "en"},
        {"system", {"en-US", "zh"}, "en"},
    };
    for (const auto& [stored, system, table] : cases) {
        host.languages = system;
        if (!stored.empty())
            host.userDefaults().set("Lumarin.language", stored);
        EXPECT_EQ(localization.effectiveBundleName(), table) << stored;
    }
}

TEST_F(Localization, AnnouncesEveryChoice) {
    int announced = 0;
    auto subscription = host.notificationCenter().observe("Lumarin.languageChanged", [&] { ++announced; });
    localization.setLanguage(Language::en);
    localization.setLanguage(Language::en);
    EXPECT_EQ(announced, 2);
    EXPECT_EQ(localization.currentLanguage(), Language::en);
}

TEST(LocalizationWithoutTheTables, FallsBackToEnglishAndThenToTheKey) {
    TemporaryFolder folder;
    const auto resources = folder / "Resources";
    auto text = [&](const std::string& key) {
        platform::headless::HeadlessHost host(folder.path(), folder / "bundle");
        platform::Host::setCurrent(&host);
        LocalizationManager::shared().setLanguage(Language::zh);
        return LocalizationManager::shared().localized(key);
    };
    EXPECT_EQ(text("menu.quit"), "menu.quit");
    // One level above the executable, which is in `bin`.
    writeFile(resources / "en.lproj/Localizable.strings", R"("menu.quit" = "Quit"; "both" = "Both";)");
    EXPECT_EQ(text("menu.quit"), "Quit");
    writeFile(resources / "zh-Hans.lproj/Localizable.strings", R"("both" = "都有";)");
    EXPECT_EQ(text("menu.quit"), "Quit");
    EXPECT_EQ(text("both"), "都有");
    EXPECT_EQ(text("neither"), "neither");
    // Beside the executable comes first.
    folder.write("bin/Resources/zh-Hans.lproj/Localizable.strings", R"("both" = "旁边";)");
    EXPECT_EQ(text("both"), "旁边");
    // A table nobody can read is no table.
    folder.write("bin/Resources/zh-Hans.lproj/Localizable.strings", "\"both\" = ");
    EXPECT_EQ(text("both"), "Both");
}
