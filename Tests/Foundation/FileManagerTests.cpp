#include "Platform/Foundation/FileManager.h"
#include "Support/Files.h"

#include <csignal>
#include <gtest/gtest.h>
#include <map>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace tests;

using namespace platform;
using namespace std::string_view_literals;

namespace {

std::size_t entriesIn(const std::filesystem::path& folder) {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
}

} // namespace

TEST(FileManager, TellsMissingFromUnreadable) {
    const TemporaryFolder folder;
    folder.write("file", "a\0b\xFF"sv);
    folder.write("empty", "");
    std::filesystem::create_symlink("file", folder / "link");
    std::filesystem::create_symlink("nowhere", folder / "dangling");

    EXPECT_EQ(files::contents(folder / "link"), "a\0b\xFF"sv);
    EXPECT_EQ(files::contents(folder / "empty"), "");
    for (const char* name : {"nothing", "no/such/folder", "file/below", "dangling"}) {
        EXPECT_EQ(files::read(folder / name).status, files::ReadStatus::missing) << name;
        EXPECT_EQ(files::contents(folder / name), std::nullopt) << name;
    }
    for (const std::filesystem::path& thing : unreadableThings(folder)) {
        EXPECT_EQ(files::read(thing).status, files::ReadStatus::unreadable) << thing;
        EXPECT_EQ(files::contents(thing), std::nullopt) << thing;
    }
}

TEST(FileManager, ReadsFilesUpToTheLimitAndThoseThatTellNoSize) {
    const TemporaryFolder folder;
    folder.write("large", "");
    std::filesystem::resize_file(folder / "large", files::maximumFileSize);
    EXPECT_EQ(files::read(folder / "large").bytes.size(), files::maximumFileSize);
    std::filesystem::resize_file(folder / "large", files::maximumFileSize + 1);
    EXPECT_EQ(files::read(folder / "large").status, files::ReadStatus::unreadable);
    EXPECT_EQ(files::contents("/proc/self/stat").value_or("").find(std::to_string(::getpid())), 0U);
}

TEST(FileManager, ReplacesAFileAtomicallyAndPrivately) {
    const TemporaryFolder folder;
    const auto file = folder.write("file", "old");
    std::filesystem::permissions(file, std::filesystem::perms{0644});
    files::writeAtomically(file, "new");
    EXPECT_EQ(bytesOf(file), "new");
    EXPECT_EQ(permissionsOf(file), 0600U);
    files::writeAtomically(folder / "fresh", "");
    EXPECT_EQ(permissionsOf(folder / "fresh"), 0600U);
    EXPECT_EQ(entriesIn(folder.path()), 2U) << "no temporary is left";
}

TEST(FileManager, WritesThroughLinks) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "elsewhere");
    folder.write("elsewhere/file", "old");
    std::filesystem::create_symlink("elsewhere/inner", folder / "outer");
    std::filesystem::create_symlink("file", folder / "elsewhere/inner");
    std::filesystem::create_symlink(folder / "elsewhere/made", folder / "dangling");
    files::writeAtomically(folder / "outer", "new");
    files::writeAtomically(folder / "dangling", "made");
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "outer"));
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "elsewhere/inner"));
    EXPECT_EQ(bytesOf(folder / "elsewhere/file"), "new");
    EXPECT_EQ(bytesOf(folder / "elsewhere/made"), "made");
}

TEST(FileManager, LeavesEverythingAsItWasWhenAWriteFails) {
    const TemporaryFolder folder;
    for (const std::filesystem::path& thing : unreadableThings(folder)) {
        if (thing.filename() == "huge")
            continue; // it may be written: only reading it is refused
        const auto before = std::filesystem::symlink_status(thing);
        EXPECT_THROW(files::writeAtomically(thing, "x"), std::system_error) << thing;
        EXPECT_FALSE(files::append(thing, "x")) << thing;
        EXPECT_FALSE(files::replace(thing, "x")) << thing;
        EXPECT_EQ(std::filesystem::symlink_status(thing).type(), before.type()) << thing;
    }
    for (const char* name : {"no/folder", "huge/below"}) {
        EXPECT_THROW(files::writeAtomically(folder / name, "x"), std::system_error) << name;
        EXPECT_FALSE(files::append(folder / name, "x")) << name;
        EXPECT_FALSE(files::replace(folder / name, "x")) << name;
    }
    EXPECT_EQ(entriesIn(folder.path()), 5U);
}

TEST(FileManager, LeavesNoPartBehindWhenTheDiskIsFull) {
    const TemporaryFolder folder;
    const auto file = folder.write("file", "old");
    const pid_t child = ::fork();
    if (child == 0) {
        // A file size limit stands for the full disk, in a process of its own for it cannot be undone.
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{4096, 4096};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        const std::string tooMuch(1 << 20, 'x');
        if (files::append(file, tooMuch) || !files::append(file, "er"))
            ::_exit(1);
        try {
            files::writeAtomically(file, tooMuch);
            ::_exit(1);
        } catch (const std::system_error&) {
            ::_exit(0);
        }
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(bytesOf(file), "older");
    EXPECT_EQ(entriesIn(folder.path()), 1U);
}

TEST(FileManager, ReplacesInPlaceAndAppends) {
    const TemporaryFolder folder;
    EXPECT_TRUE(files::append(folder / "log", "one\n"));
    EXPECT_EQ(permissionsOf(folder / "log"), 0600U);
    EXPECT_TRUE(files::append(folder / "log", "two\n"));
    EXPECT_EQ(bytesOf(folder / "log"), "one\ntwo\n");
    EXPECT_TRUE(files::replace(folder / "log", "3\n"));
    EXPECT_EQ(bytesOf(folder / "log"), "3\n");
    EXPECT_TRUE(files::replace(folder / "fresh", "x"));
    EXPECT_EQ(permissionsOf(folder / "fresh"), 0600U);
}

TEST(FileManager, KeepsEntriesOfManyThreadsWhole) {
    const TemporaryFolder folder;
    constexpr int writers = 8;
    constexpr int entries = 500;
    {
        std::vector<std::jthread> threads;
        threads.reserve(writers);
        for (int writer = 0; writer < writers; ++writer)
            threads.emplace_back([&, writer] {
                const std::string entry(static_cast<std::size_t>(writer) * 97 + 1,
                                        static_cast<char>('a' + writer));
                for (int i = 0; i < entries; ++i)
                    files::append(folder / "log", entry + "\n");
            });
    }
    std::map<std::string, int> counts;
    std::ifstream log(folder / "log");
    for (std::string line; std::getline(log, line);)
        ++counts[line];
    ASSERT_EQ(counts.size(), static_cast<std::size_t>(writers));
    for (const auto& [line, count] : counts)
        EXPECT_EQ(count, entries) << line;
}

TEST(FileManager, CreatesFoldersForTheUserAlone) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "a");
    std::filesystem::permissions(folder / "a", std::filesystem::perms{0755});
    files::createPrivateDirectory(folder / "a/b/c");
    files::createPrivateDirectory(folder / "a/b/c");
    EXPECT_EQ(permissionsOf(folder / "a"), 0755U) << "a folder that was there keeps its permissions";
    EXPECT_EQ(permissionsOf(folder / "a/b"), 0700U);
    EXPECT_EQ(permissionsOf(folder / "a/b/c"), 0700U);
    folder.write("file", "");
    files::createPrivateDirectory(folder / "file/below");
    EXPECT_TRUE(std::filesystem::is_regular_file(folder / "file"));
}
