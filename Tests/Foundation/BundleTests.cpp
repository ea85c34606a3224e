#include "Platform/Foundation/Bundle.h"
#include "Support/Files.h"

#include <array>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <thread>
#include <tuple>

using namespace tests;

using namespace platform;

TEST(Bundle, FindsResourcesAndTexts) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "en.lproj");
    folder.write("en.lproj/Localizable.strings", "\"quit\" = \"Quit\"; \"empty\" = \"\";");
    folder.write("en.lproj/Other.strings", "\"quit\" = \"Leave\";");
    const Bundle main(folder.path());
    EXPECT_EQ(main.pathForResource("de", "lproj"), std::nullopt);
    ASSERT_EQ(main.pathForResource("en", "lproj"), folder / "en.lproj");

    const Bundle& english = main.bundleAt(folder / "en.lproj");
    EXPECT_EQ(english.path(), folder / "en.lproj");
    EXPECT_EQ(english.localizedString("quit", "?"), "Quit");
    EXPECT_EQ(english.localizedString("empty", "?"), "");
    EXPECT_EQ(english.localizedString("missing", "?"), "?");
    EXPECT_EQ(english.localizedString("quit", "?", "Other"), "Leave");
    EXPECT_EQ(english.localizedString("quit", "?", "Missing"), "?");

    folder.write("en.lproj/Localizable.strings", "\"quit\" = \"Changed\";");
    EXPECT_EQ(&main.bundleAt(folder / "en.lproj"), &english);
    EXPECT_EQ(english.localizedString("quit", "?"), "Quit") << "a table is read once";
}

TEST(Bundle, HasNoTextsWhereTheFilesAreUnusable) {
    const TemporaryFolder folder;
    std::vector<std::filesystem::path> things = unreadableThings(folder);
    things.push_back(folder / "missing");
    things.push_back(folder.write("empty", ""));
    things.push_back(folder.write("truncated", "{\"quit\" = \"Qu"));
    things.push_back(folder.write("array", "[\"quit\"]"));
    things.push_back(folder.write("invalid", "{\"quit\":\"\xFF\"}"));
    for (const std::filesystem::path& thing : things) {
        const auto bundleFolder = folder / ("of-" + thing.filename().string());
        std::filesystem::create_directory(bundleFolder);
        std::filesystem::create_symlink(thing, bundleFolder / "Localizable.strings");
        std::filesystem::create_symlink(thing, bundleFolder / "Info.json");
        const Bundle bundle(bundleFolder);
        EXPECT_EQ(bundle.localizedString("quit", "?"), "?") << thing;
        EXPECT_EQ(bundle.info("quit"), std::nullopt) << thing;
    }
}

TEST(Bundle, PutsTheUsersInfoBeforeItsOwn) {
    const TemporaryFolder folder;
    folder.write("Info.json", R"({"url":"https://a","version":"1.2","build":7,"nested":{"feed":"x"}})");
    const std::tuple<std::optional<std::string>, std::string, bool> cases[] = {
        {std::nullopt, "https://a", true},
        {R"({"url":"https://b"})", "https://b", true},
        {R"({"url":7})", "https://a", true},
        {R"({"url":"https://b",})", "https://a", false},
        {"", "https://a", false},
    };
    for (const auto& [own, url, isSound] : cases) {
        if (own)
            folder.write("own.json", *own);
        const Bundle bundle(folder.path(), folder / "own.json");
        EXPECT_EQ(bundle.info("url"), url) << own.value_or("none");
        EXPECT_EQ(bundle.info("version"), "1.2");
        for (const char* noText : {"build", "nested", "feed"})
            EXPECT_EQ(bundle.info(noText), std::nullopt) << noText;
        EXPECT_EQ(bundle.hasSoundOwnInfo(), isSound) << own.value_or("none");
    }
}

TEST(Bundle, IsReadFromSeveralThreads) {
    const TemporaryFolder folder;
    folder.write("Localizable.strings", "a = b;");
    folder.write("Info.json", R"({"a":"b"})");
    const Bundle main(folder.path());
    std::array<std::jthread, 4> threads;
    for (std::jthread& thread : threads)
        thread = std::jthread([&] {
            EXPECT_EQ(main.bundleAt(folder.path()).localizedString("a", ""), "b");
            EXPECT_EQ(main.info("a"), "b");
        });
}
