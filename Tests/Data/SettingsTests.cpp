#include "Core/LocalizationManager.h"
#include "Core/TranslationStateMachine.h"
#include "Data/KeychainManager.h"
#include "Support/HeadlessTest.h"

using namespace lumarin;
using namespace tests;

namespace {

class Settings : public HeadlessTest {
protected:
    void store(const std::string& bytes) { writeFile(config, bytes); }

    const std::filesystem::path config = dataFile("config.json");
};

} // namespace

TEST_F(Settings, AreTheDefaultsWithoutAFileAndLoadingMakesNone) {
    EXPECT_EQ(KeychainManager::loadTargetLanguage(), TargetLanguage::english);
    EXPECT_EQ(KeychainManager::loadMode(), TranslationMode::ai);
    EXPECT_EQ(KeychainManager::loadStyle(), StylePreset::casual);
    EXPECT_FALSE(std::filesystem::exists(config));
}

TEST_F(Settings, ReadTheSpellingsOfEarlierVersions) {
    const std::pair<const char*, TargetLanguage> languages[] = {
        {"日语", TargetLanguage::japanese},       {"Japanese", TargetLanguage::japanese},
        {"葡萄牙语", TargetLanguage::portuguese}, {"chinese", TargetLanguage::chinese},
        {"中文", TargetLanguage::english},        {"Chinese", TargetLanguage::english},
        {" german", TargetLanguage::english},
    };
    for (const auto& [stored, language] : languages) {
        store(std::string(R"({"targetLang": ")") + stored + "\"}");
        EXPECT_EQ(KeychainManager::loadTargetLanguage(), language) << stored;
    }
    const std::pair<const char*, TranslationMode> modes[] = {
        {"免费", TranslationMode::free}, {"直接翻译", TranslationMode::free}, {"free", TranslationMode::free},
        {"AI", TranslationMode::ai},     {"优雅翻译", TranslationMode::ai},   {"Free", TranslationMode::ai},
    };
    for (const auto& [stored, mode] : modes) {
        store(std::string(R"({"mode": ")") + stored + "\"}");
        EXPECT_EQ(KeychainManager::loadMode(), mode) << stored;
    }
    store(R"({"style": "Formal"})");
    EXPECT_EQ(KeychainManager::loadStyle(), StylePreset::casual);
}

TEST_F(Settings, SavingOneKeepsTheOthers) {
    store(R"({"targetLang": "日语", "mode": "免费", "later": "kept"})");
    KeychainManager::saveMode(TranslationMode::ai);
    KeychainManager::saveStyle(StylePreset::direct);
    const std::map<std::string, std::string> expected{
        {"targetLang", "日语"}, {"mode", "ai"}, {"later", "kept"}, {"style", "direct"}};
    EXPECT_EQ(KeychainManager::readConfig(), expected);
    auto permissions = std::filesystem::status(config).permissions();
    EXPECT_EQ(permissions, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(Settings, DamagedFileIsReplacedByTheNextSave) {
    store(R"(["mode"])");
    KeychainManager::saveTargetLanguage(TargetLanguage::korean);
    EXPECT_EQ(bytesOf(config), R"({"targetLang":"korean"})");
}

// Whatever stands in the place of a file, the program starts with its defaults and leaves it as it was.
TEST(BadFiles, NeitherStopTheProgramNorAreWrittenOver) {
    using Put = std::function<void(const std::filesystem::path&)>;
    const auto bytes = [](const std::string& content) -> Put {
        return [=](const std::filesystem::path& path) { writeFile(path, content); };
    };
    const std::pair<const char*, Put> things[] = {
        {"empty", bytes("")},
        {"truncated", bytes(R"({"mode": "free", "targetLang": "ger)")},
        {"wrong type", bytes(R"({"mode": "free", "targetLang": 5})")},
        {"an array", bytes(R"(["free"])")},
        {"invalid UTF-8", bytes("{\"mode\": \"free\", \"\xff\": \"\xc3\"}")},
        {"deeply nested", bytes(std::string(1'000'000, '['))},
        {"a folder", [](const auto& path) { std::filesystem::create_directories(path); }},
        {"100 MiB",
         [](const auto& path) {
             writeFile(path, "{");
             std::filesystem::resize_file(path, 100 << 20);
         }},
    };
    for (const auto& [what, put] : things) {
        SCOPED_TRACE(what);
        const TemporaryFolder folder;
        const auto data = folder / "Application Support" / "Lumarin";
        std::map<std::filesystem::path, std::filesystem::file_time_type> times;
        for (const auto& path :
             {data / "config.json", data / "custom-terms.json", folder / "resources/Info.json",
              folder / "resources/en.lproj/Localizable.strings"}) {
            put(path);
            times[path] = std::filesystem::last_write_time(path);
        }
        put(folder / "Configuration" / "defaults.json");
        platform::headless::HeadlessHost host(folder.path(), folder / "resources");
        platform::Host::setCurrent(&host);
        auto machine = std::make_shared<TranslationStateMachine>();
        machine->setup();
        host.advance(1s);
        EXPECT_EQ(machine->currentMode.value(), TranslationMode::ai);
        EXPECT_EQ(machine->currentLanguage.value(), TargetLanguage::english);
        EXPECT_EQ(LocalizationManager::shared().localized("menu.quit"), "menu.quit");
        EXPECT_TRUE(host.keys.pressFn());
        for (const auto& [path, time] : times)
            EXPECT_EQ(std::filesystem::last_write_time(path), time) << path;
    }
}
