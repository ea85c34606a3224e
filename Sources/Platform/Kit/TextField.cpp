#include "Platform/Kit/TextField.h"

#include "Platform/Kit/Transaction.h"

#include <limits>

namespace platform {

TextField::TextField(std::unique_ptr<TextFieldCell> cell) : content(std::move(cell)) {}

void TextField::setAttributedStringValue(AttributedString text) {
    std::string plain;
    for (const auto& run : text)
        plain += run.text;
    setStringValue(std::move(plain));
    content->attributedStringValue = std::move(text);
}

bool TextField::showsWhole() const {
    constexpr double anyWidth = std::numeric_limits<double>::infinity();
    return content->cellSizeForBounds({0, 0, anyWidth, bounds().height}).width <= bounds().width;
}

void TextField::setBackgroundColor(const Color& color) {
    const auto transaction = Transaction::withActionsDisabled();
    layer()->setBackgroundColor(color);
}

} // namespace platform
