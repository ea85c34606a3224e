#include "Platform/Kit/Button.h"

#include <utility>

namespace platform {

Button::Button(std::string title, Action onPress) : action(std::move(onPress)) {
    look.title = std::move(title);
    look.button = this;
}

void Button::setKeyEquivalent(std::string keyEquivalent) {
    key = std::move(keyEquivalent);
    set(&ButtonLook::isDefault, key == "\r");
}

void Button::performClick() {
    if (look.isEnabled)
        action(*this);
}

} // namespace platform
