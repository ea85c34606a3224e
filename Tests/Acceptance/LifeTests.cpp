#include "Acceptance/AcceptanceTest.h"

#include <csignal>

namespace tests {
namespace {

// One sentence for the user, and a status that is no crash's.
void expectsToEndSaying(DisplayProcess& program, const std::string& word) {
    const auto status = program.awaitEnd();
    ASSERT_TRUE(status) << "It goes on running";
    EXPECT_TRUE(*status > 0 && *status < 128) << *status;
    EXPECT_NE(program.output().find(word), std::string::npos) << program.output();
}

} // namespace

TEST(AcceptanceLife, EndsWithAMessageWhenTheDisplayDies) {
    AcceptanceDesk desk;
    desk.display.end();
    expectsToEndSaying(desk.program.process(), "display");
}

TEST(AcceptanceLife, EndsWithAMessageWhenTheDisplayDiesInAGesture) {
    AcceptanceDesk desk;
    desk.service.thinking = 2s;
    SlowEditorClient editor(desk.display);
    editor.setUp("Hello", 0, 0);
    desk.person.press(Key::rightControl);
    desk.program.process().awaitLine("[SM] Translating");
    desk.display.end();
    expectsToEndSaying(desk.program.process(), "display");
}

TEST(AcceptanceLife, SaysThatThereIsNoDisplay) {
    const TemporaryFolder folder;
    const ServiceDouble service;
    const DisplayProcess::Environment nowhere{{"DISPLAY", ""},
                                              {"HOME", folder.path()},
                                              {"XDG_DATA_HOME", folder / "data"},
                                              {"XDG_CONFIG_HOME", folder / "config"},
                                              {"XDG_RUNTIME_DIR", folder.path()}};
    DisplayProcess program({installProgram(folder, service)}, nowhere);
    expectsToEndSaying(program, "display");
}

TEST(AcceptanceLife, OfASecondCopyIsOverAtOnce) {
    AcceptanceDesk desk;
    auto second = desk.display.start({desk.display.home / "installed" / "Lumarin"});
    second->awaitEnd();
    EXPECT_NE(second->output().find("already running"), std::string::npos) << second->output();
    SlowEditorClient editor(desk.display);
    editor.setUp("Hello", 0, 0);
    desk.program.gesture(desk.person);
    EXPECT_EQ(editor.content().text, "T(Hello)");
}

TEST(AcceptanceLife, LeavesTheUsersClipboardToTheManagerAtItsEnd) {
    AcceptanceDesk desk;
    SelectionClient manager({.isManager = true});
    SlowEditorClient editor(desk.display);
    editor.setUp("Hello", 0, 0);
    {
        SelectionClient owner({.owned = platform::desktop::SelectionContent::of("the user's").forms});
        desk.program.gesture(desk.person);
    }
    desk.program.process().signal(SIGTERM);
    EXPECT_EQ(desk.program.process().awaitEnd(), 0);
    SelectionProbe probe;
    EXPECT_EQ(probe.owner(), manager.window());
    const auto text = probe.fetch("UTF8_STRING");
    EXPECT_EQ(text ? text->bytes : "", "the user's");
}

} // namespace tests
