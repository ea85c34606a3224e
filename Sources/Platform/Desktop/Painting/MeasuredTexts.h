#pragma once

#include "Platform/Desktop/Painting/SetText.h"

#include <algorithm>
#include <list>
#include <string>

namespace platform::desktop {

// The sizes of texts, remembered for those of late: views measure theirs whenever they are drawn. Main
// thread.
class MeasuredTexts {
public:
    Size sizeOf(std::string_view text, const Font& font) {
        const auto known = std::ranges::find_if(
            latest, [&](const Measured& one) { return one.text == text && one.font == font; });
        if (known != latest.end()) {
            latest.splice(latest.begin(), latest, known);
        } else {
            latest.push_front({std::string(text), font, SetText(text, font).size()});
            if (latest.size() > kept)
                latest.pop_back();
        }
        return latest.front().size;
    }

private:
    static constexpr std::size_t kept = 8;

    struct Measured {
        std::string text;
        Font font;
        Size size;
    };

    std::list<Measured> latest;
};

} // namespace platform::desktop
