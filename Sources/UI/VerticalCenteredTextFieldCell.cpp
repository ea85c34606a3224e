#include "UI/VerticalCenteredTextFieldCell.h"

namespace lumarin {

using platform::Rect;

Rect VerticalCenteredTextFieldCell::titleRectForBounds(const Rect& bounds) const {
    const Rect base = TextFieldCell::titleRectForBounds(bounds);
    const double needed = cellSizeForBounds(bounds).height;
    return {base.x, bounds.y + (bounds.height - needed) * 0.5, base.width, needed};
}

void VerticalCenteredTextFieldCell::drawInterior(const Rect& frame, platform::Drawing& drawing) const {
    TextFieldCell::drawInterior(titleRectForBounds(frame), drawing);
}

void VerticalCenteredTextFieldCell::selectWithFrame(const Rect& frame, platform::FieldEditor& editor,
                                                    std::size_t start, std::size_t length) const {
    TextFieldCell::selectWithFrame(titleRectForBounds(frame), editor, start, length);
}

} // namespace lumarin
