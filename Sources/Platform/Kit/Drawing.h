#pragma once

#include "Platform/Kit/Color.h"
#include "Platform/Kit/Font.h"
#include "Platform/Kit/VisualEffect.h"

#include <optional>
#include <string>
#include <vector>

namespace platform {

enum class TextAlignment { left, center };

// What becomes of a line that is wider than its place: it goes on beyond it, or ends in an ellipsis.
enum class LineBreakMode { clipping, truncatingTail };

// One line of text, set from the top of its place downwards.
struct TextLine {
    std::string text;
    Font font;
    Color color;
    // In the coordinates of the layer's bounds.
    Rect place;
    TextAlignment alignment = TextAlignment::left;
    LineBreakMode lineBreakMode = LineBreakMode::clipping;
};

// What a view draws into its layer, for the host to paint. Value.
struct Drawing {
    std::optional<VisualEffect> effect;
    std::vector<TextLine> lines;
};

} // namespace platform
