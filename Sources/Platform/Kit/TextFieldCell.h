#pragma once

#include "Platform/Kit/AttributedString.h"
#include "Platform/Kit/View.h"

#include <string>

namespace platform {

// Where the selection of a text field is shown and edited. Main thread.
struct FieldEditor {
    // In the view's coordinates.
    Rect frame;
    std::string string;
    // In characters as a reader sees them.
    std::size_t selectionStart = 0;
    std::size_t selectionLength = 0;
};

// The text of a text field, and where it stands in it: at the top, in one line unless it wraps. A kind of
// field that places its text otherwise overrides the operations. Owned by its field. Main thread.
class TextFieldCell {
public:
    virtual ~TextFieldCell() = default;

    // With pieces in it the attributed text is what is shown, from the left.
    std::string stringValue;
    AttributedString attributedStringValue;
    Font font;
    Color textColor = Color::system(SystemColor::label);
    TextAlignment alignment = TextAlignment::left;
    LineBreakMode lineBreakMode = LineBreakMode::clipping;

    // Where the text is laid out in a field with these bounds.
    virtual Rect titleRectForBounds(const Rect& bounds) const { return bounds; }

    // What the text needs: one line, and not more than the bounds' width where it is truncated.
    virtual Size cellSizeForBounds(const Rect& bounds) const;

    // Draws the text in the frame, from its top.
    virtual void drawInterior(const Rect& frame, Drawing& drawing) const;

    // Selects characters of the text in an editor that is laid over the frame.
    virtual void selectWithFrame(const Rect& frame, FieldEditor& editor, std::size_t start,
                                 std::size_t length) const;
};

} // namespace platform
