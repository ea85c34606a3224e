#include "Platform/Kit/TextField.h"

#include "Platform/Kit/Transaction.h"

namespace platform {

TextField::TextField(std::unique_ptr<TextFieldCell> cell) : content(std::move(cell)) {}

void TextField::setAttributedStringValue(AttributedString text) {
    std::string plain;
    for (const auto& run : text)
        plain += run.text;
    setStringValue(std::move(plain));
    content->attributedStringValue = std::move(text);
}

void TextField::setBackgroundColor(const Color& color) {
    const auto transaction = Transaction::withActionsDisabled();
    layer()->setBackgroundColor(color);
}

} // namespace platform
