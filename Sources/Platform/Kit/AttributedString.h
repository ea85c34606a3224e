#pragma once

#include "Platform/Kit/Color.h"
#include "Platform/Kit/Font.h"
#include "Platform/Kit/Symbol.h"

#include <optional>
#include <string>
#include <vector>

namespace platform {

// A piece of a text in one font and colour, or a symbol as large as that font's letters. Value.
struct TextRun {
    std::string text;
    Font font;
    Color color;
    std::optional<Symbol> symbol{};
};

// One line of text whose pieces differ. Value.
using AttributedString = std::vector<TextRun>;

} // namespace platform
