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
    const std::pair<const char*, std::string> contents[] = {
        {"empty", ""},
        {"truncated", R"({"mode": "free", "targetLang": "ger)"},
        {"wrong type", R"({"mode": "free", "targetLang": 5})"},
        {"an array", R"(["free"])"},
        {"invalid UTF-8", "{\"mode\": \"free\", \"\xff\": \"\xc3\"}"},
        {"deeply nested", std::string(1'000'000, '[')},
    };
    auto start = [](const TemporaryFolder& folder, const std::string& what) {
        platform::headless::HeadlessHost host(folder.path(), folder / "resources");
        platform::Host::setCurrent(&host);
        auto machine = std::make_shared<TranslationStateMachine>();
        machine->setup();
        host.advance(1s);
        EXPECT_EQ(machine->currentMode.value(), TranslationMode::ai) << what;
        EXPECT_EQ(machine->currentLanguage.value(), TargetLanguage::english) << what;
        EXPECT_EQ(LocalizationManager::shared().localized("menu.quit"), "menu.quit") << what;
        EXPECT_TRUE(host.keys.pressFn()) << what;
    };
    auto paths = [](const TemporaryFolder& folder) {
        const auto data = folder / "Application Support" / "Lumarin";
        return std::vector<std::filesystem::path>{data / "config.json", data / "custom-terms.json",
                                                  folder / "resources" / "Info.json",
                                                  folder / "resources" / "en.lproj/Localizable.strings"};
    };
    for (const auto& [what, bytes] : contents) {
        TemporaryFolder folder;
        for (const auto& path : paths(folder))
            writeFile(path, bytes);
        writeFile(folder / "Configuration" / "defaults.json", bytes);
        start(folder, what);
        for (const auto& path : paths(folder))
            EXPECT_EQ(bytesOf(path), bytes) << what << ": " << path;
    }
    TemporaryFolder folders;
    for (const auto& path : paths(folders))
        std::filesystem::create_directories(path);
    std::filesystem::create_directories(folders / "Configuration" / "defaults.json");
    start(folders, "a folder");
    TemporaryFolder huge;
    for (const auto& path : paths(huge)) {
        writeFile(path, "{");
        std::filesystem::resize_file(path, 100 << 20);
    }
    start(huge, "100 MiB");
    for (const auto& path : paths(huge))
        EXPECT_EQ(std::filesystem::file_size(path), 100U << 20U);
}
