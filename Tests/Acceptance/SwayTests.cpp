#include "Acceptance/AcceptanceProgram.h"
#include "Acceptance/SwaySession.h"
#include "Platform/Desktop/Wayland/Keys/VirtualKeyboard.h"
#include "Support/Files.h"
#include "Support/RunToEnd.h"

#include <gtest/gtest.h>

namespace tests {
namespace {

using platform::desktop::KeyCode;

// On every keyboard of a PC.
constexpr KeyCode control = 37;
constexpr KeyCode s = 39;
constexpr KeyCode shift = 50;
constexpr KeyCode x = 53;
constexpr KeyCode home = 110;
constexpr KeyCode right = 114;
constexpr KeyCode pause = 127;

// The program and a letter in an editor, used with the keys that the compositor has bound.
class Sway : public testing::Test {
protected:
    Sway() { thread.start(); }

    void open(const std::string& text, int selected = 0) {
        letter = session.home.write("letter.txt", text);
        editor = session.start({"mousepad", letter});
        session.awaitFrontWindow("mousepad");
        // The window is there before the file is.
        std::this_thread::sleep_for(500ms);
        type(home, {control});
        for (int count = 0; count < selected; ++count)
            type(right, {shift});
    }

    void type(KeyCode code, std::vector<KeyCode> modifiers = {}) {
        runToEnd(thread, person.type({code, modifiers}, 0));
    }

    void command(const std::string& word) const { session.run({session.home / "installed/Lumarin", word}); }

    void gesture() {
        command("press");
        program->awaitLine("[SM] Done: ");
        command("release");
        program->awaitLine("[SM] Injected");
    }

    // An x is typed where the caret is.
    std::string textWithTypedX() {
        const auto before = bytesOf(letter);
        type(x);
        type(s, {control});
        std::string text;
        comesTrue([&] {
            const auto last = text;
            text = bytesOf(letter);
            return text != before && !text.empty() && text == last;
        });
        return text.ends_with('\n') ? text.substr(0, text.size() - 1) : text;
    }

    void copy(const std::string& type, const std::string& bytes) {
        const auto file = session.home.write("copied", bytes);
        owner =
            session.start({"sh", "-c", "exec wl-copy --foreground --type " + type + " < " + file.string()});
        comesTrue([&] {
            const auto asked = session.start({"wl-paste", "--list-types"});
            asked->awaitEnd();
            return asked->output().find(type) != std::string::npos;
        });
    }

    std::string pasted(const std::string& type) {
        session.run({"sh", "-c",
                     "wl-paste --no-newline --type " + type + " > " + (session.home / "pasted").string()});
        return bytesOf(session.home / "pasted");
    }

    SwaySession session;
    ServiceDouble service;
    platform::desktop::CompositorThread thread;
    // Keys of anybody's own, such as a keyboard on the desk types.
    platform::desktop::VirtualKeyboard person{thread};
    std::unique_ptr<TestProcess> editor;
    std::unique_ptr<TestProcess> owner;
    std::unique_ptr<TestProcess> program = startedProgram();
    std::filesystem::path letter;

private:
    std::unique_ptr<TestProcess> startedProgram() {
        auto started = session.start({installProgram(session.home, service)});
        started->awaitLine("App started");
        return started;
    }
};

std::string picture() {
    std::string bytes("\x89PNG\r\n\x1a\n", 8);
    for (int count = 0; count < 3'000'000; ++count)
        bytes += static_cast<char>(count * 7 + count / 251);
    return bytes;
}

} // namespace

TEST_F(Sway, ReplacesTheSelectionOrAllAndKeepsAPictureOnTheClipboard) {
    const auto kept = picture();
    copy("image/png", kept);
    open("Hello wide world", 5);
    gesture();
    EXPECT_EQ(textWithTypedX(), "T(Hello)x wide world");
    gesture();
    EXPECT_EQ(textWithTypedX(), "T(T(Hello)x wide world)x");
    EXPECT_EQ(pasted("image/png"), kept);
}

TEST_F(Sway, HearsOfATapAndOfAnAbandonment) {
    copy("text/plain", "mine");
    open("Please send 样品 soon.");
    type(pause);
    program->awaitLine("[SM] Injected", 30s);
    EXPECT_EQ(textWithTypedX(), "T(Please send 样品 soon.)x");
    service.thinking = 2s;
    command("press");
    program->awaitLine("[SM] Translating");
    session.keepScreenshot("sway waiting");
    command("cancel");
    program->awaitLine("[SM] Cancel");
    EXPECT_EQ(textWithTypedX(), "T(Please send 样品 soon.)xx");
    EXPECT_EQ(pasted("text/plain"), "mine");
}

// There Control-C would interrupt what runs.
TEST_F(Sway, TypesNothingIntoATerminal) {
    editor = session.start({"foot", "sh", "-c",
                            "trap 'echo interrupted > " + (session.home / "trap").string()
                                + "' INT; while :; do sleep 0.1; done"});
    session.awaitFrontWindow("foot");
    command("press");
    program->awaitLine("[SM] Error: emptyText");
    command("release");
    EXPECT_FALSE(std::filesystem::exists(session.home / "trap"));
}

} // namespace tests
