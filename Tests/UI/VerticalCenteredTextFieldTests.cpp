#include "Support/HeadlessTest.h"
#include "UI/VerticalCenteredTextField.h"

using namespace lumarin;
using namespace platform;

namespace {

class VerticalCenteredTextFieldTest : public tests::HeadlessTest {
protected:
    VerticalCenteredTextFieldTest() {
        field->setFont(Font::systemFont(14, FontWeight::medium));
        field->setLineBreakMode(LineBreakMode::truncatingTail);
        field->setFrame({16, 0, 88, 44});
    }

    // Where the text is drawn.
    Rect place() const { return field->layer()->presentation({}).drawing.lines.at(0).place; }

    void expectHeight(double bottom, double height, const char* name) const {
        EXPECT_DOUBLE_EQ(place().y, bottom) << name;
        EXPECT_DOUBLE_EQ(place().height, height) << name;
    }

    std::shared_ptr<VerticalCenteredTextField> field =
        TextField::labelWithString<VerticalCenteredTextField>("Hello");
};

} // namespace

TEST_F(VerticalCenteredTextFieldTest, DrawsItsLineInTheMiddleWhateverChanges) {
    expectHeight(13.6, 16.8, "at first");
    const Rect plain = [] {
        auto other = TextField::labelWithString<TextField>("Hello");
        other->setFrame({16, 0, 88, 44});
        return other->layer()->presentation({}).drawing.lines.at(0).place;
    }();
    EXPECT_EQ(place().x, plain.x);
    EXPECT_EQ(place().width, plain.width);
    field->setStringValue("");
    expectHeight(13.6, 16.8, "empty");
    field->setFont(Font::systemFont(20, FontWeight::medium));
    expectHeight(10, 24, "a larger font");
    field->setFrame({16, 0, 88, 30});
    expectHeight(3, 24, "a lower field");
    field->setFrame({16, 0, 88, 10});
    expectHeight(-7, 24, "taller than the field");
}

TEST_F(VerticalCenteredTextFieldTest, CentersInBoundsThatBeginElsewhereAndSelectsThere) {
    const Rect bounds{4, 100, 60, 44};
    const Rect title = field->cell().titleRectForBounds(bounds);
    EXPECT_EQ(title.x, 4);
    EXPECT_EQ(title.width, 60);
    EXPECT_DOUBLE_EQ(title.y, 113.6);
    EXPECT_DOUBLE_EQ(title.height, 16.8);

    FieldEditor editor;
    field->cell().selectWithFrame(bounds, editor, 1, 3);
    EXPECT_EQ(editor.frame, title);
    EXPECT_EQ(editor.string, "Hello");
    EXPECT_EQ(editor.selectionStart, 1U);
    EXPECT_EQ(editor.selectionLength, 3U);
}
