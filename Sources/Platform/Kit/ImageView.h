#pragma once

#include "Platform/Kit/View.h"

namespace platform {

// A view that shows a symbol, as large as itself. Main thread.
class ImageView : public View {
public:
    explicit ImageView(Symbol symbol) : shown(std::move(symbol)) {}

    void setContentTintColor(const Color& color) {
        tint = color;
        setNeedsDisplay();
    }

protected:
    void draw(Drawing& drawing, const Rect& bounds) const override {
        drawing.symbols.push_back({shown.name, tint, bounds});
    }

private:
    const Symbol shown;
    Color tint = Color::system(SystemColor::label);
};

} // namespace platform
