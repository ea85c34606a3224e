#include "Desktop/KeyboardDisplay.h"
#include "Desktop/WindowManager.h"
#include "Platform/Desktop/DesktopWorkspace.h"
#include "Platform/Desktop/Session/SessionFacts.h"
#include "Support/TemporaryFolder.h"

#include <array>

#include <gtest/gtest.h>
#include <unistd.h>

namespace platform::desktop {
namespace {

using tests::comesTrue;
using tests::TemporaryFolder;
using tests::writeFile;

TEST(Workspace, NamesTheFrontApplicationAndBringsItBack) {
    tests::XServer display;
    tests::WindowManager windowManager;
    XConnection x;

    TemporaryFolder folder;
    writeFile(
        folder.path() / "applications/org.example.writer.desktop",
        "# A comment=with a sign\n[Desktop Entry]\nName = Writer\nName[zh_CN]=写字板\nName[de]=Schreiber\n"
        "[Desktop Action new]\nName=New Window\n");
    writeFile(folder.path() / "applications/something.desktop",
              "[Desktop Entry]\nName=Paint Box\nStartupWMClass=PAINT\n");
    PostedKeys keys;
    DesktopWorkspace workspace(x, ApplicationNames({"/nowhere", folder.path()}, {"fr", "zh_CN", "zh"}), keys);
    workspace.readNames();

    auto isInFront = [&](const TestApplication& application, const char* name) {
        return comesTrue([&] {
            auto front = workspace.frontmostApplication();
            return front && static_cast<xcb_window_t>(front->identifier) == application.window()
                   && front->localizedName == name;
        });
    };
    auto writer = std::make_unique<TestApplication>("Writer");
    writer->setProperty("_NET_WM_PID", "CARDINAL", static_cast<std::uint32_t>(getpid()));
    ASSERT_TRUE(isInFront(*writer, "写字板"));
    auto chosen = *workspace.frontmostApplication();
    TestApplication painter("paint");
    ASSERT_TRUE(isInFront(painter, "Paint Box"));
    TestApplication unknown("unheard-of");
    ASSERT_TRUE(isInFront(unknown, "unheard-of"));

    workspace.activate(chosen);
    EXPECT_TRUE(isInFront(*writer, "写字板"));
    workspace.activate(chosen);
    EXPECT_TRUE(isInFront(*writer, "写字板"));
    workspace.activate(RunningApplication{painter.window() | std::uint64_t{7} << 32U, std::nullopt});
    EXPECT_TRUE(isInFront(*writer, "写字板"));
    auto window = writer->window();
    writer = nullptr;
    ASSERT_TRUE(comesTrue([&] {
        auto front = workspace.frontmostApplication();
        return !front || static_cast<xcb_window_t>(front->identifier) != window;
    }));
    workspace.activate(chosen);
}

TEST(SystemFacts, TurnsLocalesIntoLanguageTags) {
    struct Case {
        const char* language;
        const char* lcAll;
        const char* lcMessages;
        const char* lang;
        std::vector<std::string> tags;
    };
    const auto cases = std::to_array<Case>({
        {"", "", "", "zh_CN.UTF-8", {"zh-Hans-CN"}},
        {"", "", "zh_TW.UTF-8", "en_US.UTF-8", {"zh-Hant-TW"}},
        {"", "de_DE", "zh_TW.UTF-8", "en_US.UTF-8", {"de-DE"}},
        {"zh_HK:zh:en", "", "", "en_US.UTF-8", {"zh-Hant-HK", "zh-Hans", "en", "en-US"}},
        {"zh_CN", "C", "", "en_US.UTF-8", {"en"}},
        {"zh_CN", "", "", "", {"zh-Hans-CN"}},
        {"", "", "", "sr_RS.UTF-8@latin", {"sr-Latn-RS"}},
        {"", "", "", "C.UTF-8", {"en"}},
        {"", "", "", "", {"en"}},
    });
    for (const auto& [language, lcAll, lcMessages, lang, tags] : cases) {
        setenv("LANGUAGE", language, 1);
        setenv("LC_ALL", lcAll, 1);
        setenv("LC_MESSAGES", lcMessages, 1);
        setenv("LANG", lang, 1);
        EXPECT_EQ(preferredLanguageTags(), tags)
            << language << '|' << lcAll << '|' << lcMessages << '|' << lang;
    }
}

TEST(SystemFacts, FindsTheUsersFolders) {
    TemporaryFolder home;
    setenv("HOME", home.path().c_str(), 1);
    setenv("XDG_DATA_HOME", "", 1);
    setenv("XDG_CONFIG_HOME", (home.path() / "settings").c_str(), 1);
    writeFile(home.path() / "settings/user-dirs.dirs", "XDG_DESKTOP_DIR=\"$HOME/桌面\"\n");
    auto folders = sessionDirectories();
    EXPECT_EQ(folders.applicationSupport, home.path() / ".local/share");
    EXPECT_EQ(folders.configuration, home.path() / "settings/Lumarin");
    EXPECT_EQ(folders.desktop, home.path() / "桌面");
    EXPECT_EQ(folders.downloads, home.path() / "Downloads");
    EXPECT_TRUE(std::filesystem::is_regular_file(folders.executable));
}

} // namespace
} // namespace platform::desktop
