#include "Platform/Kit/TextFieldCell.h"

#include <algorithm>

namespace platform {
namespace {

// Text keeps clear of the left and right edge of its frame.
constexpr double padding = 2;

// Gives how wide it is.
double drawRun(const TextRun& run, const Rect& place, Drawing& drawing) {
    if (!run.symbol) {
        drawing.lines.push_back({run.text, run.font, run.color, place});
        return sizeWithAttributes(run.text, run.font).width;
    }
    const Size size = Symbol::sizeAt(run.font.size);
    const double lineHeight = sizeWithAttributes("", run.font).height;
    drawing.symbols.push_back(
        {run.symbol->name,
         run.color,
         {place.x, place.maxY() - (lineHeight + size.height) / 2, size.width, size.height}});
    return size.width;
}

} // namespace

Size TextFieldCell::cellSizeForBounds(const Rect& bounds) const {
    Size size = sizeWithAttributes(stringValue, font);
    size.width += 2 * padding;
    if (lineBreakMode == LineBreakMode::truncatingTail)
        size.width = std::min(size.width, bounds.width);
    return size;
}

void TextFieldCell::drawInterior(const Rect& frame, Drawing& drawing) const {
    Rect place{frame.x + padding, frame.y, frame.width - 2 * padding, frame.height};
    for (const auto& run : attributedStringValue)
        place.x += drawRun(run, place, drawing);
    if (attributedStringValue.empty())
        drawing.lines.push_back({stringValue, font, textColor, place, alignment, lineBreakMode});
}

void TextFieldCell::selectWithFrame(const Rect& frame, FieldEditor& editor, std::size_t start,
                                    std::size_t length) const {
    editor = {frame, stringValue, start, length};
}

} // namespace platform
