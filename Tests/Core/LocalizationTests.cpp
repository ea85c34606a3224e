#include "Core/LocalizationManager.h"
#include "Core/LocalizedError.h"
#include "Core/TranslationError.h"
#include "Models/TargetLanguage.h"
#include "Models/TranslationState.h"
#include "Platform/Foundation/HTTPError.h"
#include "Platform/Foundation/StringsFile.h"
#include "Support/HeadlessTest.h"

#include <nlohmann/json.hpp>

using namespace lumarin;
using namespace tests;
using Language = LocalizationManager::Language;

namespace {

using Table = std::map<std::string, std::string>;

Table table(const std::string& language, const std::string& name) {
    return platform::parseStrings(bytesOf(LUMARIN_RESOURCES "/" + language + ".lproj/" + name + ".strings"))
        .value();
}

std::vector<std::string> directives(const std::string& text) {
    std::vector<std::string> found;
    for (auto at = text.find('%'); at != std::string::npos; at = text.find('%', at + 1))
        found.push_back(text.substr(at, 2));
    return found;
}

} // namespace

TEST(StringTables, HoldTheSameKeysWithTheSamePlaceholders) {
    for (const char* name : {"Localizable", "Host", "Updates"}) {
        const auto english = table("en", name);
        const auto chinese = table("zh-Hans", name);
        EXPECT_EQ(english.size(), chinese.size()) << name;
        for (const auto& [key, text] : english) {
            ASSERT_TRUE(chinese.contains(key)) << key;
            EXPECT_FALSE(text.empty() || chinese.at(key).empty()) << key;
            EXPECT_EQ(directives(text), directives(chinese.at(key))) << key;
            for (const auto& directive : directives(text))
                EXPECT_EQ(directive, "%@") << key;
        }
    }
    const auto english = table("en", "Localizable");
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

TEST_F(Localization, TellsOfErrorsInTheLanguageOfTheInterface) {
    const platform::HTTPError refused("Could not connect to %@.", "localhost");
    const platform::HTTPError untold("Said by the library: %@", "no route");
    const auto refusal = TranslationError::apiError("HTTP 500: 100%@");
    auto told = [](const std::exception& error) { return localizedDescription(error); };
    localization.setLanguage(Language::zh);
    EXPECT_EQ(told(refused), "无法连接到 localhost。");
    EXPECT_EQ(told(untold), "Said by the library: no route");
    EXPECT_EQ(told(refusal), "翻译服务返回错误：HTTP 500: 100%@");
    localization.setLanguage(Language::en);
    EXPECT_EQ(told(refused), refused.what());
    EXPECT_EQ(told(refusal), "The translation service reported a problem: HTTP 500: 100%@");
    for (const char* answer : {"<html>", "1e999"}) {
        try {
            FAIL() << nlohmann::json::parse(answer);
        } catch (const std::exception& error) {
            EXPECT_EQ(told(error), "The server’s response could not be read.");
        }
    }
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
