#pragma once

#include "Platform/Kit/TextField.h"

#include <memory>
#include <string>

namespace lumarin {

// A label with its text in the middle of each line. Main thread.
inline std::shared_ptr<platform::TextField> centeredLabel(std::string text, const platform::Font& font,
                                                          const platform::Color& color,
                                                          const platform::Rect& frame) {
    using platform::TextField;
    auto label = TextField::labelWithString<TextField>(std::move(text));
    label->setFont(font);
    label->setTextColor(color);
    label->setAlignment(platform::TextAlignment::center);
    label->setFrame(frame);
    return label;
}

} // namespace lumarin
