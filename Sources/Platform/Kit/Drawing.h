#pragma once

#include "Platform/Kit/ButtonLook.h"
#include "Platform/Kit/Symbol.h"
#include "Platform/Kit/VisualEffect.h"

#include <optional>
#include <string>
#include <vector>

namespace platform {

enum class TextAlignment { left, center };

// What becomes of a line that is wider than its place: it goes on beyond it, ends in an ellipsis, or becomes
// several.
enum class LineBreakMode { clipping, truncatingTail, wordWrapping };

// A line of text, set from the top of its place downwards.
struct TextLine {
    std::string text;
    Font font;
    Color color;
    // In the coordinates of the layer's bounds.
    Rect place;
    TextAlignment alignment = TextAlignment::left;
    LineBreakMode lineBreakMode = LineBreakMode::clipping;

    bool operator==(const TextLine&) const = default;
};

// A symbol in one colour, as large as its place.
struct SymbolPicture {
    std::string name;
    Color color;
    Rect place;

    bool operator==(const SymbolPicture&) const = default;
};

// What a view draws into its layer, for the host to paint. Value.
struct Drawing {
    std::optional<VisualEffect> effect;
    std::vector<SymbolPicture> symbols;
    // As large as the bounds.
    std::optional<ButtonLook> button;
    std::vector<TextLine> lines;

    bool operator==(const Drawing&) const = default;
};

} // namespace platform
