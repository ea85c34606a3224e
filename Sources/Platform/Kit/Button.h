#pragma once

#include "Platform/Kit/View.h"

#include <functional>

namespace platform {

// A view that does something when it is pressed, by the pointer or the keyboard. Main thread.
class Button : public View {
public:
    using Action = std::function<void(Button&)>;

    Button(std::string title, Action action);

    int tag = 0;

    const std::string& title() const { return look.title; }
    void setFont(const Font& font) { set(&ButtonLook::font, font); }
    void setBezelStyle(BezelStyle style) { set(&ButtonLook::bezelStyle, style); }
    void setBordered(bool isBordered) { set(&ButtonLook::isBordered, isBordered); }
    bool isEnabled() const { return look.isEnabled; }
    void setEnabled(bool isEnabled) { set(&ButtonLook::isEnabled, isEnabled); }
    void setContentTintColor(const Color& color) { set(&ButtonLook::tint, color); }

    // The key that presses it wherever the keyboard is in the window: "\r" is Return.
    const std::string& keyEquivalent() const { return key; }
    void setKeyEquivalent(std::string keyEquivalent);

    // Does what a press does: nothing if it is not enabled.
    void performClick();

protected:
    void draw(Drawing& drawing, const Rect&) const override { drawing.button = look; }

private:
    template <typename T>
    void set(T ButtonLook::*property, const T& value) {
        look.*property = value;
        setNeedsDisplay();
    }

    ButtonLook look;
    std::string key;
    const Action action;
};

} // namespace platform
