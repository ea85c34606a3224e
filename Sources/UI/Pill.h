#pragma once

#include "Platform/Kit/GradientLayer.h"
#include "Platform/Kit/Panel.h"
#include "Platform/Kit/VisualEffectView.h"
#include "UI/VerticalCenteredTextField.h"

namespace lumarin {

// A capsule of frosted glass with all that is in it, made empty and transparent and not yet on the screen; it
// goes from there at the end of its life. Main thread.
struct Pill {
    static constexpr double pillHeight = 44;
    // Between the ends of the pill and its label.
    static constexpr double inset = 16;
    static constexpr auto font = platform::Font::systemFont(14, platform::FontWeight::medium);

    explicit Pill(double width);

    static platform::Rect labelFrame(double pillWidth);
    static platform::Rect cursorFrame(double x);
    // Of the glow: the tint fades towards the right.
    static std::vector<platform::Color> glowColors(const platform::Color& tint, double left, double middle);
    // From the left edge to the right.
    static std::shared_ptr<platform::GradientLayer> makeGradient(const platform::Rect& frame,
                                                                 const std::vector<platform::Color>& colors,
                                                                 const std::vector<double>& locations);

    const std::shared_ptr<platform::Panel> panel;
    // The panel's content, and the body that everything else is in.
    const std::shared_ptr<platform::VisualEffectView> visualEffect;
    const std::shared_ptr<VerticalCenteredTextField> textField;
    const std::shared_ptr<platform::Layer> cursorLayer;
    const std::shared_ptr<platform::GradientLayer> shimmerLayer;
    const std::shared_ptr<platform::GradientLayer> glowLayer;
};

} // namespace lumarin
