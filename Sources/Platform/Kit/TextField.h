#pragma once

#include "Platform/Kit/TextFieldCell.h"

namespace platform {

// A view that shows the text of its cell. Main thread.
class TextField : public View {
public:
    // A kind of field with a cell of its own kind hands it down; it must not be null.
    explicit TextField(std::unique_ptr<TextFieldCell> cell = std::make_unique<TextFieldCell>());

    // A field of the kind that shows a text and cannot be edited, on no background.
    template <typename Field>
    static std::shared_ptr<Field> labelWithString(std::string text) {
        auto label = std::make_shared<Field>();
        label->setStringValue(std::move(text));
        label->setBezeled(false);
        label->setEditable(false);
        return label;
    }

    const TextFieldCell& cell() const { return *content; }

    // Whether the text has room in the field's width.
    bool showsWhole() const;

    const std::string& stringValue() const { return content->stringValue; }
    void setStringValue(std::string text) {
        content->attributedStringValue.clear();
        set(&TextFieldCell::stringValue, std::move(text));
    }
    // Its string value is then the text of all pieces.
    void setAttributedStringValue(AttributedString text);
    const Font& font() const { return content->font; }
    void setFont(const Font& font) { set(&TextFieldCell::font, font); }
    const Color& textColor() const { return content->textColor; }
    void setTextColor(const Color& color) { set(&TextFieldCell::textColor, color); }
    TextAlignment alignment() const { return content->alignment; }
    void setAlignment(TextAlignment alignment) { set(&TextFieldCell::alignment, alignment); }
    LineBreakMode lineBreakMode() const { return content->lineBreakMode; }
    void setLineBreakMode(LineBreakMode mode) { set(&TextFieldCell::lineBreakMode, mode); }

    const Color& backgroundColor() const { return layer()->backgroundColor(); }
    void setBackgroundColor(const Color& color);

    // Hosts show labels only: fields without a bezel that cannot be edited.
    bool isBezeled() const { return bezeled; }
    void setBezeled(bool isBezeled) { bezeled = isBezeled; }
    bool isEditable() const { return editable; }
    void setEditable(bool isEditable) { editable = isEditable; }

protected:
    void draw(Drawing& drawing, const Rect& bounds) const override { content->drawInterior(bounds, drawing); }

private:
    template <typename T>
    void set(T TextFieldCell::*property, T value) {
        (*content).*property = std::move(value);
        setNeedsDisplay();
    }

    std::unique_ptr<TextFieldCell> content;
    bool bezeled = true;
    bool editable = true;
};

} // namespace platform
