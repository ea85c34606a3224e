#include "Support/HeadlessTest.h"
#include "UI/VerticalCenteredTextField.h"

using namespace lumarin;
using namespace platform;

namespace {

struct VerticalCenteredTextFieldTest : tests::HeadlessTest {};

} // namespace

TEST_F(VerticalCenteredTextFieldTest, DrawsAndSelectsItsLineInTheMiddleWhateverChanges) {
    auto field = TextField::labelWithString<VerticalCenteredTextField>("Hello");
    const auto expectPlace = [&](const Rect& expected, const char* name) {
        expectRect(field->layer()->presentation({}).drawing.lines.at(0).place, expected, name);
    };
    field->setFont(Font::systemFont(14, FontWeight::medium));
    field->setFrame({16, 0, 88, 44});
    expectPlace({2, 13.6, 84, 16.8}, "at first");
    FieldEditor editor;
    field->cell().selectWithFrame({4, 100, 60, 44}, editor, 1, 3);
    expectRect(editor.frame, {4, 113.6, 60, 16.8}, "selected in bounds that begin elsewhere");
    EXPECT_EQ(editor.string, "Hello");
    EXPECT_EQ(editor.selectionStart, 1U);
    EXPECT_EQ(editor.selectionLength, 3U);
    field->setStringValue("");
    expectPlace({2, 13.6, 84, 16.8}, "empty");
    field->setFont(Font::systemFont(20, FontWeight::medium));
    expectPlace({2, 10, 84, 24}, "a larger font");
    field->setFrame({16, 0, 48, 10});
    expectPlace({2, -7, 44, 24}, "taller than the field");
}
