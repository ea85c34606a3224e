#include "Acceptance/AcceptanceTest.h"
#include "Desktop/Windows.h"
#include "Platform/Desktop/X11/Server/ActiveWindow.h"
#include "Platform/Desktop/X11/Server/WindowClass.h"

#include <csignal>

namespace tests {
namespace {

// One sentence for the user, and a status that is no crash's.
void expectsToEndSaying(TestProcess& program, const std::string& word) {
    const auto status = program.awaitEnd();
    ASSERT_TRUE(status) << "It goes on running";
    EXPECT_TRUE(*status > 0 && *status < 128) << *status;
    program.awaitLine(word);
}

} // namespace

TEST(AcceptanceLife, EndsWithAMessageWhenTheDisplayDies) {
    for (const bool isInGesture : {false, true}) {
        AcceptanceDesk desk;
        desk.service.thinking = 2s;
        const TestEditor editor;
        editor.setUp("Hello");
        if (isInGesture) {
            desk.person.press(Key::rightControl);
            desk.program.process().awaitLine("[SM] Translating");
        }
        desk.display.end();
        expectsToEndSaying(desk.program.process(), "display");
    }
}

TEST(AcceptanceLife, SaysThatThereIsNoDisplay) {
    const TemporaryFolder folder;
    const ServiceDouble service;
    const TestProcess::Environment nowhere{{"DISPLAY", ""},
                                           {"HOME", folder.path()},
                                           {"XDG_DATA_HOME", folder / "data"},
                                           {"XDG_CONFIG_HOME", folder / "config"},
                                           {"XDG_RUNTIME_DIR", folder.path()}};
    TestProcess program({installProgram(folder, service)}, nowhere);
    expectsToEndSaying(program, "display");
}

TEST(AcceptanceLife, OfASecondCopyIsOverAtOnceAndHasTheFirstOpenItsMenu) {
    AcceptanceDesk desk;
    const platform::desktop::XConnection x;
    const TestEditor editor;
    const auto isMenuOpen = [&] {
        return windowClassOf(x, platform::desktop::frontWindow(x)).name == "Lumarin";
    };
    const auto startAgain = [&] {
        auto second = desk.display.start({desk.display.home / "installed" / "Lumarin"});
        EXPECT_EQ(second->awaitEnd(), 0) << second->output();
        EXPECT_TRUE(comesTrue(isMenuOpen));
    };
    startAgain();
    // It gets the keys a moment after it is seen.
    EXPECT_TRUE(comesTrue([&] {
        desk.person.strike({Key::escape});
        return !isMenuOpen();
    }));
    editor.setUp("Hello");
    desk.program.gesture(desk.person);
    EXPECT_TRUE(editor.comesToHold("T(Hello)"));
    startAgain();
    EXPECT_TRUE(comesTrue([&] {
        desk.person.strike({Key::leftControl, Key::q});
        return desk.program.process().awaitEnd(100ms) == 0;
    }));
}

TEST(AcceptanceLife, LeavesTheUsersClipboardToTheManagerAtItsEnd) {
    AcceptanceDesk desk;
    SelectionClient manager({.isManager = true});
    const TestEditor editor;
    editor.setUp("Hello");
    ClipboardContent users;
    SelectionProbe probe;
    {
        SelectionClient owner({.owned = {{{"UTF8_STRING", "UTF8_STRING", 8, "the user's"},
                                          {"image/png", "image/png", 8, std::string(2'000'000, 'p')}}}});
        users = clipboardContent(probe);
        desk.program.gesture(desk.person);
    }
    desk.program.process().signal(SIGTERM);
    EXPECT_EQ(desk.program.process().awaitEnd(), 0);
    EXPECT_EQ(probe.owner(), manager.window());
    EXPECT_TRUE(clipboardContent(probe) == users);
}

} // namespace tests
