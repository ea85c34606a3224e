#include "Platform/Desktop/Painting/ThemeColors.h"

#include <QGuiApplication>
#include <QPalette>

namespace platform::desktop {
namespace {

Color colorFrom(const QColor& color) {
    return Color::calibrated(color.redF(), color.greenF(), color.blueF(), color.alphaF());
}

} // namespace

// What is fainter than a label stays readable: small letters too have a contrast of 4.5 at least.
Color themeColor(SystemColor name) {
    const auto palette = QGuiApplication::palette();
    const Color label = colorFrom(palette.color(QPalette::WindowText));
    const bool isDark = palette.color(QPalette::Window).lightnessF() < 0.5F;
    switch (name) {
    case SystemColor::secondaryLabel:
        return label.withAlphaComponent(0.75);
    case SystemColor::tertiaryLabel:
        return label.withAlphaComponent(0.62);
    case SystemColor::separator:
        return label.withAlphaComponent(0.18);
    case SystemColor::controlAccent:
        return colorFrom(palette.color(QPalette::Highlight));
    case SystemColor::windowBackground:
        return colorFrom(palette.color(QPalette::Window));
    case SystemColor::green:
        return isDark ? Color::calibrated(0.34, 0.85, 0.56, 1) : Color::calibrated(0.09, 0.49, 0.29, 1);
    case SystemColor::none:
    case SystemColor::label:
        break;
    }
    return label;
}

} // namespace platform::desktop
