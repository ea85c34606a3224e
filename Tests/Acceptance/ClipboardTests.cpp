#include "Acceptance/AcceptanceTest.h"

namespace tests {
namespace {

using platform::desktop::SelectionForm;

std::string manyBytes(std::size_t count) {
    std::string bytes(count, '\0');
    std::uint32_t state = 1;
    for (auto& byte : bytes)
        byte = static_cast<char>((state = state * 1664525 + 1013904223) >> 24U);
    return bytes;
}

struct OwnedByUser {
    const char* name;
    std::vector<SelectionForm> forms;
};

std::vector<OwnedByUser> whatUsersCopy() {
    const SelectionForm text{"UTF8_STRING", "UTF8_STRING", 8, "Grüße, 你好"};
    return {{"text",
             {text,
              {"STRING", "STRING", 8,
               "Gr\xFC\xDF"
               "e"},
              {"TEXT", "STRING", 8,
               "Gr\xFC\xDF"
               "e"}}},
            {"rich text",
             {{"text/html", "text/html", 8, "<b>Gr&uuml;&szlig;e</b>"},
              {"text/rtf", "text/rtf", 8, R"({\rtf1})"},
              text}},
            {"an image",
             {{"image/png", "image/png", 8, manyBytes(20U << 20U)},
              {"image/bmp", "image/bmp", 8, manyBytes(70'000)}}},
            {"files",
             {{"x-special/gnome-copied-files", "x-special/gnome-copied-files", 8, "copy\nfile:///a%20b"},
              {"text/uri-list", "text/uri-list", 8, "file:///a%20b\r\n"},
              text}}};
}

} // namespace

class AcceptanceClipboard : public testing::Test {
protected:
    void translateBothWays() {
        for (std::size_t selected : {0U, 5U}) {
            editor.setUp("Hello", 0, selected);
            desk.program.gesture(desk.person);
            EXPECT_EQ(editor.content().text, "T(Hello)");
        }
    }

    bool comesToBeNobodys() {
        return comesTrue([this] { return probe.owner() == XCB_NONE; });
    }

    AcceptanceDesk desk;
    SelectionProbe probe;
    SlowEditorClient editor{desk.display};
};

TEST_F(AcceptanceClipboard, IsTheUsersAgainWithAllItsForms) {
    for (const auto& owned : whatUsersCopy()) {
        SCOPED_TRACE(owned.name);
        SelectionClient owner({.owned = owned.forms, .pieceSize = 262'144});
        const auto before = clipboardContent(probe);
        EXPECT_EQ(before.size(), owned.forms.size());
        translateBothWays();
        EXPECT_TRUE(clipboardContent(probe) == before) << "The clipboard has changed";
    }
}

TEST_F(AcceptanceClipboard, IsEmptyAgainIfItWasEmpty) {
    translateBothWays();
    EXPECT_TRUE(comesToBeNobodys());
    { SelectionClient died({.owned = std::vector{SelectionForm{"UTF8_STRING", "UTF8_STRING", 8, "gone"}}}); }
    translateBothWays();
    EXPECT_TRUE(comesToBeNobodys());
}

TEST_F(AcceptanceClipboard, OfAnOwnerWhoNeverAnswersHoldsNothingUpForLong) {
    const std::vector<SelectionForm> text{{"UTF8_STRING", "UTF8_STRING", 8, "never"}};
    for (const auto& script : {ClientScript{.owned = text, .neverAnswers = true},
                               ClientScript{.owned = text, .diesWhenAskedForData = true}}) {
        SelectionClient owner(script);
        const auto start = Clock::now();
        translateBothWays();
        EXPECT_LT(Clock::now() - start, 15s);
    }
}

} // namespace tests
