#pragma once

#include "Platform/Kit/TextFieldCell.h"

namespace lumarin {

// A line of text in the vertical middle of its field, and beyond both edges alike if it is the taller of the
// two. Main thread.
class VerticalCenteredTextFieldCell : public platform::TextFieldCell {
public:
    platform::Rect titleRectForBounds(const platform::Rect& bounds) const override;
    void drawInterior(const platform::Rect& frame, platform::Drawing& drawing) const override;
    void selectWithFrame(const platform::Rect& frame, platform::FieldEditor& editor, std::size_t start,
                         std::size_t length) const override;
};

} // namespace lumarin
