#pragma once

#include "Platform/Kit/Geometry.h"

#include <string_view>

namespace platform {

enum class FontWeight { regular, medium, semibold };

// A font of the system's user interface. Any thread.
struct Font {
    double size = 13;
    FontWeight weight = FontWeight::regular;

    static constexpr Font systemFont(double size, FontWeight weight = FontWeight::regular) {
        return {size, weight};
    }

    bool operator==(const Font&) const = default;
};

// The extent of the text set as one line; an empty text has the line's height too. Main thread.
Size sizeWithAttributes(std::string_view text, const Font& font);

} // namespace platform
