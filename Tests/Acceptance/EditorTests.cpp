#include "Acceptance/AcceptanceTest.h"
#include "Acceptance/Application.h"
#include "Support/Files.h"

namespace tests {
namespace {

std::string hundredKilobytes() {
    std::string text;
    for (int line = 1; text.size() < 100'000; ++line)
        text += "Line " + std::to_string(line) + ": 请报价 and 样品, with the price list.\n";
    return text + "The end.";
}

struct Letter {
    const char* name;
    std::string text;
    // So many characters at the beginning are selected; none: the whole text is meant.
    int selected;
};

std::vector<Letter> letters() {
    return {{"a sentence", "Please send 样品 soon.", 0},
            {"a selection", "Hello wide world", 5},
            {"lines", "Dear Sir,\n\n\tfirst\nsecond\n\nYours", 0},
            {"100 kB", hundredKilobytes(), 0},
            {"emoji", "Thanks 👍🏽 👨‍👩‍👧 🇨🇳!", 0},
            {"right to left", "שלום עולם, مرحبا بالعالم", 0}};
}

// Some editors end a file with a line end.
std::string withoutLineEnd(std::string text) {
    if (text.ends_with('\n'))
        text.pop_back();
    return text;
}

std::string translated(const Letter& letter) {
    if (letter.selected == 0)
        return ServiceDouble::translationOf(letter.text) + "x";
    const auto count = static_cast<std::size_t>(letter.selected);
    return ServiceDouble::translationOf(letter.text.substr(0, count)) + "x" + letter.text.substr(count);
}

class AcceptanceEditor : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(, AcceptanceEditor, testing::Values("mousepad", "featherpad"),
                         [](const auto& editor) { return std::string(editor.param); });

} // namespace

// The x typed afterwards shows where the caret is.
TEST_P(AcceptanceEditor, HoldsTheTranslationAndTheCaretBehindIt) {
    AcceptanceDesk desk;
    for (const auto& letter : letters()) {
        SCOPED_TRACE(letter.name);
        Application editor(desk.display, desk.person, GetParam(), letter.text);
        editor.selectNext(letter.selected);
        desk.program.gesture(desk.person);
        desk.display.keepScreenshot(std::string(GetParam()) + " " + letter.name);
        EXPECT_EQ(withoutLineEnd(editor.textWithTypedX()), translated(letter));
    }
}

TEST_P(AcceptanceEditor, KeepsTextAndSelectionWhenEscapeIsPressed) {
    AcceptanceDesk desk;
    desk.service.thinking = 1s;
    for (int selected : {0, 5}) {
        Application editor(desk.display, desk.person, GetParam(), "Hello wide world");
        editor.selectNext(selected);
        desk.person.press(Key::rightControl);
        desk.program.process().awaitLine("[SM] Translating");
        desk.person.strike({Key::escape});
        desk.program.process().awaitLine("[SM] Cancel");
        desk.person.release(Key::rightControl);
        desk.program.process().awaitLine("[SM] fnUp — state=idle");
        EXPECT_EQ(withoutLineEnd(editor.textWithTypedX()), selected ? "x wide world" : "Hello wide worldx");
    }
}

struct Reach {
    const char* editor;
    const char* name;
    // As setxkbmap takes it; where it has two layouts, the second is chosen.
    std::vector<std::string> map;
};

class AcceptanceMap : public testing::TestWithParam<Reach> {};
INSTANTIATE_TEST_SUITE_P(
    , AcceptanceMap,
    testing::Values(Reach{"mousepad", "German", {"de"}}, Reach{"mousepad", "Russian", {"ru"}},
                    Reach{"featherpad", "Greek", {"gr"}},
                    Reach{"featherpad", "Second", {"us,ru", "-option", "grp:caps_toggle"}}),
    [](const auto& each) { return std::string(each.param.name); });

TEST_P(AcceptanceMap, ReachesTheEditor) {
    AcceptanceDesk desk(GetParam().map);
    const std::string text = "Please send 样品 soon.";
    Application editor(desk.display, desk.person, GetParam().editor, text);
    if (GetParam().map.size() > 1)
        desk.person.strike({Key::capsLock});
    desk.program.gesture(desk.person);
    // The key of the x types something else in some maps, and how an editor reads Control-S in them is not
    // looked at here.
    desk.display.start({"setxkbmap", "-option", "", "us"})->awaitEnd();
    EXPECT_EQ(withoutLineEnd(editor.textWithTypedX()), ServiceDouble::translationOf(text) + "x");
}

TEST(AcceptanceTerminal, IsNotInterruptedByTheHeldKey) {
    AcceptanceDesk desk;
    const auto typed = desk.display.home / "typed.txt";
    auto terminal = desk.display.start({"xterm", "-e", "sh", "-c", "exec cat > '" + typed.string() + "'"});
    Display::awaitFrontWindow("xterm");
    std::this_thread::sleep_for(500ms);
    desk.person.strike({Key::x});
    desk.program.emptyGesture(desk.person);
    desk.person.strike({Key::n});
    desk.person.strike({Key::enter});
    EXPECT_TRUE(comesTrue([&] { return bytesOf(typed) == "xn\n"; })) << bytesOf(typed);
    desk.display.keepScreenshot("xterm");
}

// The held key is a Control key to applications unless they are made to believe that it is up.
TEST(AcceptanceKeys, TypedDuringTheHoldReachTheApplication) {
    AcceptanceDesk desk;
    const TestEditor editor;
    desk.service.thinking = 500ms;
    editor.setUp("Hello");
    desk.person.press(Key::rightControl);
    desk.program.process().awaitLine("[SM] Translating");
    desk.person.strike({Key::x});
    EXPECT_TRUE(editor.comesToHold("Hellox")) << editor.content();
    desk.program.process().awaitLine("[SM] Done: ");
    desk.person.release(Key::rightControl);
    EXPECT_TRUE(editor.comesToHold("T(Hello)")) << editor.content();
}

} // namespace tests
