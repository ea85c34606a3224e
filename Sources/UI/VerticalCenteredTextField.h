#pragma once

#include "Platform/Kit/TextField.h"
#include "UI/VerticalCenteredTextFieldCell.h"

namespace lumarin {

// A field with its text in the vertical middle. Main thread.
class VerticalCenteredTextField : public platform::TextField {
public:
    VerticalCenteredTextField() : TextField(std::make_unique<VerticalCenteredTextFieldCell>()) {}
};

} // namespace lumarin
