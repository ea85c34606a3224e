#include "Platform/Kit/TextFieldCell.h"

#include <algorithm>

namespace platform {
namespace {

// Text keeps clear of the left and right edge of its frame.
constexpr double padding = 2;

} // namespace

Size TextFieldCell::cellSizeForBounds(const Rect& bounds) const {
    Size size = sizeWithAttributes(stringValue, font);
    size.width += 2 * padding;
    if (lineBreakMode == LineBreakMode::truncatingTail)
        size.width = std::min(size.width, bounds.width);
    return size;
}

void TextFieldCell::drawInterior(const Rect& frame, Drawing& drawing) const {
    const Rect place{frame.x + padding, frame.y, frame.width - 2 * padding, frame.height};
    drawing.lines.push_back({stringValue, font, textColor, place, alignment, lineBreakMode});
}

void TextFieldCell::selectWithFrame(const Rect& frame, FieldEditor& editor, std::size_t start,
                                    std::size_t length) const {
    editor = {frame, stringValue, start, length};
}

} // namespace platform
