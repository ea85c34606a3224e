#include "Platform/Foundation/UserDefaults.h"

#include "Platform/Foundation/Json.h"
#include "Support/Files.h"

#include <gtest/gtest.h>
#include <thread>

using namespace tests;

using namespace platform;

TEST(UserDefaults, KeepsValuesAcrossRunsInAPrivateFile) {
    const TemporaryFolder folder;
    const auto file = folder / "made/here/defaults.json";
    {
        UserDefaults defaults(file);
        EXPECT_EQ(defaults.string("language"), std::nullopt);
        defaults.remove("language");
        EXPECT_FALSE(std::filesystem::exists(folder / "made")) << "nothing to write yet";
        defaults.set("language", "zh");
        defaults.set("id", "1");
        defaults.set("language", "en");
        defaults.remove("id");
    }
    EXPECT_EQ(permissionsOf(folder / "made"), 0700U);
    EXPECT_EQ(permissionsOf(file), 0600U);
    const UserDefaults defaults(file);
    EXPECT_EQ(defaults.string("language"), "en");
    EXPECT_EQ(defaults.string("id"), std::nullopt);
}

TEST(UserDefaults, KeepsMembersItDoesNotKnow) {
    const TemporaryFolder folder;
    const auto file = folder.write("defaults.json", R"({"other":"kept","language":"zh"})");
    UserDefaults(file).set("language", "en");
    EXPECT_EQ(bytesOf(file), R"({"language":"en","other":"kept"})");
}

TEST(UserDefaults, SeesWhatOthersChangeInTheFile) {
    const TemporaryFolder folder;
    UserDefaults defaults(folder / "defaults.json");
    defaults.set("language", "zh");
    folder.write("defaults.json", R"({"language":"en","other":"new"})");
    EXPECT_EQ(defaults.string("language"), "en");
    defaults.set("id", "1");
    EXPECT_EQ(bytesOf(folder / "defaults.json"), R"({"id":"1","language":"en","other":"new"})");
    std::filesystem::remove(folder / "defaults.json");
    EXPECT_EQ(defaults.string("id"), std::nullopt);
}

TEST(UserDefaults, NeverWritesOverWhatItCouldNotRead) {
    const TemporaryFolder folder;
    for (const std::filesystem::path& thing : unreadableThings(folder)) {
        const auto before = std::filesystem::symlink_status(thing).type();
        UserDefaults defaults(thing);
        defaults.set("a", "1");
        EXPECT_EQ(defaults.string("a"), "1") << thing;
        EXPECT_EQ(std::filesystem::symlink_status(thing).type(), before) << thing;
        EXPECT_EQ(UserDefaults(thing).string("a"), std::nullopt) << thing;
    }
    EXPECT_EQ(std::filesystem::file_size(folder / "huge"), std::uintmax_t{100} << 20U);
}

TEST(UserDefaults, SetsEachDamagedFileAsideAndBeginsANewOne) {
    const TemporaryFolder folder;
    const auto file = folder / "defaults.json";
    int damaged = 0;
    for (const std::string_view bytes : {"", "{\"a\":\"1", "[]", "{\"a\":1}", "{\"a\":\"\xFF\"}"}) {
        folder.write("defaults.json", bytes);
        UserDefaults defaults(file);
        ++damaged;
        const auto aside = "defaults.json.damaged" + (damaged == 1 ? "" : "-" + std::to_string(damaged));
        EXPECT_EQ(bytesOf(folder / aside), bytes);
        EXPECT_EQ(defaults.string("a"), std::nullopt);
        EXPECT_FALSE(std::filesystem::exists(file));
        defaults.set("b", "2");
        EXPECT_EQ(bytesOf(file), R"({"b":"2"})");
    }
}

TEST(UserDefaults, HoldsValuesThatCannotBeWritten) {
    const TemporaryFolder folder;
    folder.write("file", "");
    UserDefaults defaults(folder / "file/defaults.json");
    defaults.set("a", "1");
    EXPECT_EQ(defaults.string("a"), "1");
}

TEST(UserDefaults, TakesChangesFromSeveralThreads) {
    const TemporaryFolder folder;
    const auto file = folder / "defaults.json";
    UserDefaults defaults(file);
    {
        std::vector<std::jthread> threads;
        threads.reserve(4);
        for (int thread = 0; thread < 4; ++thread)
            threads.emplace_back([&defaults, thread] {
                for (int i = 0; i < 20; ++i)
                    defaults.set("key" + std::to_string(thread), std::to_string(i));
            });
    }
    const auto written = decodeStringDictionary(bytesOf(file));
    ASSERT_TRUE(written.has_value());
    ASSERT_EQ(written->size(), 4U);
    for (const auto& [key, value] : *written)
        EXPECT_EQ(value, "19") << key;
}
