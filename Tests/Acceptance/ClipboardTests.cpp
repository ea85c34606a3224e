#include "Acceptance/AcceptanceTest.h"

namespace tests {

TEST(AcceptanceClipboard, IsTheUsersAgainWhateverItHolds) {
    const platform::desktop::SelectionForm text{"UTF8_STRING", "UTF8_STRING", 8, "Grüße, 你好"};
    const std::pair<const char*, ClientScript> owners[] = {
        {"nobody's", {}},
        {"in many forms",
         {.owned = {{{"image/png", "image/png", 8, std::string(20U << 20U, 'p')},
                     {"text/html", "text/html", 8, "<b>Gr&uuml;&szlig;e</b>"},
                     {"text/uri-list", "text/uri-list", 8, "file:///a%20b\r\n"},
                     {"STRING", "STRING", 8, "Gr\xFC\xDF"},
                     text}},
          .pieceSize = 262'144}},
        {"of an owner who dies", {.owned = {{text}}, .diesWhenAskedForData = true}},
    };
    AcceptanceDesk desk;
    const TestEditor editor;
    SelectionProbe probe;
    for (const auto& [name, script] : owners) {
        SCOPED_TRACE(name);
        const SelectionClient owner(script);
        const auto before = script.diesWhenAskedForData ? ClipboardContent() : clipboardContent(probe);
        const auto start = Clock::now();
        for (const char* field : {"Hello", "[Hello]"}) {
            editor.setUp(field);
            desk.program.gesture(desk.person);
            EXPECT_TRUE(editor.comesToHold("T(Hello)")) << editor.content();
        }
        EXPECT_LT(Clock::now() - start, 15s);
        EXPECT_TRUE(comesTrue([&] { return clipboardContent(probe) == before; })) << "It has changed";
    }
    // What cannot be put back is not touched.
    const SelectionClient silent({.owned = {{text}}, .neverAnswers = true});
    editor.setUp("Hello");
    desk.person.press(Key::rightControl);
    desk.program.process().awaitLine("[SM] Error: readFailed");
    desk.person.release(Key::rightControl);
    EXPECT_EQ(probe.owner(), silent.window());
    EXPECT_TRUE(editor.comesToHold("Hello")) << editor.content();
}

} // namespace tests
