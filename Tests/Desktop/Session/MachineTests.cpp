#include "Desktop/QtProgram.h"
#include "Platform/Desktop/Session/DesktopLoginItem.h"
#include "Platform/Desktop/Session/FileReveal.h"
#include "Platform/Desktop/Session/MachineFacts.h"
#include "Support/ComesTrue.h"
#include "Support/Files.h"
#include "Support/TemporaryFolder.h"

#include <csignal>

#include <QCoreApplication>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace platform::desktop {
namespace {

using Status = LoginItem::Status;

TEST(LoginItem, QuotesTheProgramAsTheDesktopReadsIt) {
    const auto cases = std::to_array<std::pair<std::string, std::string>>({
        {"/usr/bin/Lumarin", R"("/usr/bin/Lumarin")"},
        {"/opt/My Apps/译/Lumarin", R"("/opt/My Apps/译/Lumarin")"},
        {R"(/a"b`c$d\e)", R"("/a\\"b\\`c\\$d\\\\e")"},
        {"/100%f", R"(env "/100%%f")"},
    });
    for (const auto& [program, value] : cases)
        EXPECT_EQ(execValue(program), value);
}

TEST(LoginItem, IsReadAnewAndIsEnabledOnlyByAnEntryForThisProgram) {
    const tests::TemporaryFolder folder;
    const auto entry = folder.path() / "config/autostart/lumarin.desktop";
    DesktopLoginItem item(entry.parent_path(), "/opt/My Apps/Lumarin");
    EXPECT_EQ(item.status(), Status::notRegistered);
    item.unregisterItem();
    item.registerItem();
    EXPECT_EQ(item.status(), Status::enabled);
    const auto own = tests::bytesOf(entry);
    const auto replaced = [&](const std::string& text, const std::string& by) {
        auto changed = own;
        return changed.replace(changed.find(text), text.size(), by);
    };

    struct Case {
        std::string text;
        bool isOwn;
    };
    for (const auto& [text, isOwn] : std::to_array<Case>({{own + "Hidden=true\n", true},
                                                          {replaced("enabled=true", "enabled=false"), true},
                                                          {replaced("Type=Application\n", ""), true},
                                                          {replaced("My Apps", "Other Apps"), false},
                                                          {replaced("[Desktop Entry]", "[Desktop"), false},
                                                          {"", false},
                                                          {"\xFF\0nonsense", false}})) {
        SCOPED_TRACE(text);
        tests::writeFile(entry, text);
        EXPECT_EQ(item.status(), Status::notRegistered);
        item.unregisterItem();
        EXPECT_EQ(std::filesystem::exists(entry), !isOwn);
        tests::writeFile(entry, text);
        item.registerItem();
        EXPECT_EQ(tests::bytesOf(entry), own);
        EXPECT_EQ(item.status(), Status::enabled);
    }
    item.unregisterItem();
    EXPECT_FALSE(std::filesystem::exists(entry));

    std::filesystem::create_directories(entry / "in the way");
    EXPECT_EQ(item.status(), Status::notRegistered);
    EXPECT_THROW(item.registerItem(), std::exception);
    for (const char* program : {"/opt/line\nfeed", "/opt/not\xFFtext"})
        EXPECT_THROW(DesktopLoginItem(folder.path(), program).registerItem(), std::exception) << program;
}

TEST(MachineFacts, NameTheModelThatTheMakerHasWritten) {
    struct Case {
        const char* maker;
        const char* product;
        std::optional<std::string> model;
    };
    for (const auto& [maker, product, model] : std::to_array<Case>({{"ACME\n", "Book 5\n", "ACME Book 5"},
                                                                    {"ACME", "ACME Book 5", "ACME Book 5"},
                                                                    {"Default string", "Book 5", "Book 5"},
                                                                    {"ACME", "To be filled by O.E.M.", {}},
                                                                    {"ACME", " \n", {}},
                                                                    {"", "", {}}})) {
        const tests::TemporaryFolder folder;
        tests::writeFile(folder.path() / "sys_vendor", maker);
        tests::writeFile(folder.path() / "product_name", product);
        EXPECT_EQ(hardwareModel(folder.path()), model) << maker << '|' << product;
    }
    EXPECT_EQ(hardwareModel("/nowhere"), std::nullopt);
    EXPECT_FALSE(machineFacts().operatingSystemVersion.empty());
}

TEST(FileReveal, OpensTheFolderWhereNobodySelectsFiles) {
    setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
    const tests::QtProgram<QCoreApplication> program;
    // Signals that this program keeps for itself are not kept from what it starts.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);

    const tests::TemporaryFolder folder;
    const auto opener = folder.path() / "xdg-open";
    const auto said = folder.path() / "said";
    tests::writeFile(opener, "#!/bin/sh\n(echo \"$@\"; grep SigBlk /proc/$$/status) >'" + said.string()
                                 + ".new'\n"
                                   "mv '"
                                 + said.string() + ".new' '" + said.string() + "'\n");
    chmod(opener.c_str(), 0700);
    setenv("PATH", (folder.path().string() + ":" + std::getenv("PATH")).c_str(), 1);
    revealFile("/some where/桌面/report.txt");
    EXPECT_TRUE(tests::comesTrue([&] {
        QCoreApplication::processEvents();
        return std::filesystem::exists(said);
    }));
    EXPECT_EQ(tests::bytesOf(said), "/some where/桌面\nSigBlk:\t0000000000000000\n");
}

} // namespace
} // namespace platform::desktop
