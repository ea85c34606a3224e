#include "UI/Pill.h"

namespace lumarin {
namespace {

using namespace platform;

constexpr double cornerRadius = Pill::pillHeight / 2;
constexpr double shimmerWidth = 112;
constexpr auto warmWhite = Color::calibrated(0.96, 0.94, 0.91, 0.9);
constexpr auto accentPurple = Color::calibrated(0.58, 0.48, 0.98, 1.0);

std::shared_ptr<Panel> makePanel(double width) {
    auto panel =
        std::make_shared<Panel>(Rect{0, 0, width, Pill::pillHeight}, Window::StyleMask::nonactivatingPanel);
    panel->setFloatingPanel(true);
    panel->setBackgroundColor(Color::clear());
    panel->isOpaque = false;
    panel->hasShadow = true;
    panel->isMovable = false;
    panel->setAlphaValue(0);
    return panel;
}

std::shared_ptr<VisualEffectView> makeBody(const Rect& frame) {
    auto body = std::make_shared<VisualEffectView>(frame);
    body->setMaterial(VisualEffect::Material::hudWindow);
    body->setBlendingMode(VisualEffect::BlendingMode::behindWindow);
    body->setState(VisualEffect::State::active);
    auto& layer = *body->layer();
    layer.setCornerRadius(cornerRadius);
    layer.setMasksToBounds(true);
    layer.setBorderWidth(0.5);
    layer.setBorderColor(Color::white(1, 0.06));
    return body;
}

std::shared_ptr<VerticalCenteredTextField> makeLabel(const Rect& frame) {
    auto label = TextField::labelWithString<VerticalCenteredTextField>("");
    label->setFont(Pill::font);
    label->setTextColor(warmWhite);
    label->setBackgroundColor(Color::clear());
    label->setAlignment(TextAlignment::center);
    label->setLineBreakMode(LineBreakMode::truncatingTail);
    label->setFrame(frame);
    label->setAlphaValue(0);
    return label;
}

std::shared_ptr<Layer> makeCursor() {
    auto cursor = std::make_shared<Layer>();
    cursor->setFrame(Pill::cursorFrame(Pill::inset));
    cursor->setCornerRadius(0.75);
    cursor->setBackgroundColor(warmWhite);
    cursor->setOpacity(0);
    return cursor;
}

std::shared_ptr<GradientLayer> makeShimmer() {
    return Pill::makeGradient(
        {-shimmerWidth / 2, 0, shimmerWidth, Pill::pillHeight},
        {Color::clear(), Color::white(1, 0.08), Color::white(1, 0.15), Color::white(1, 0.08), Color::clear()},
        {0, 0.35, 0.5, 0.65, 1});
}

std::shared_ptr<GradientLayer> makeGlow(const Rect& frame) {
    auto glow = Pill::makeGradient(frame, Pill::glowColors(accentPurple, 0.18, 0.06), {0, 0.5, 1});
    glow->setCornerRadius(cornerRadius);
    glow->setOpacity(0.7F);
    return glow;
}

} // namespace

Pill::Pill(double width)
    : panel(makePanel(width)),
      visualEffect(makeBody({0, 0, width, pillHeight})),
      textField(makeLabel(labelFrame(width))),
      cursorLayer(makeCursor()),
      shimmerLayer(makeShimmer()),
      glowLayer(makeGlow({0, 0, width, pillHeight})) {
    panel->setContentView(visualEffect);
    visualEffect->layer()->addSublayer(glowLayer);
    visualEffect->layer()->addSublayer(shimmerLayer);
    visualEffect->addSubview(textField);
    visualEffect->layer()->addSublayer(cursorLayer);
}

Rect Pill::labelFrame(double pillWidth) {
    return {inset, 0, pillWidth - 2 * inset, pillHeight};
}

Rect Pill::cursorFrame(double x) {
    return {x, 12, 1.5, 20};
}

std::vector<Color> Pill::glowColors(const Color& tint, double left, double middle) {
    return {tint.withAlphaComponent(left), tint.withAlphaComponent(middle), Color::clear()};
}

std::shared_ptr<GradientLayer> Pill::makeGradient(const Rect& frame, const std::vector<Color>& colors,
                                                  const std::vector<double>& locations) {
    auto gradient = std::make_shared<GradientLayer>();
    gradient->setFrame(frame);
    gradient->setColors(colors);
    gradient->setLocations(locations);
    gradient->setStartPoint({0, 0.5});
    gradient->setEndPoint({1, 0.5});
    return gradient;
}

} // namespace lumarin
