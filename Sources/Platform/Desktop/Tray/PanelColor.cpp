#include "Platform/Desktop/Tray/PanelColor.h"

#include <algorithm>

#include <QGuiApplication>
#include <QImage>
#include <QPalette>
#include <QPixmap>
#include <QScreen>

namespace platform::desktop {

namespace {

constexpr QRgb onDark = 0xFFF4F4F4;
constexpr QRgb onLight = 0xFF2E2E2E;
constexpr int middleGray = 128;

// Of most of what is seen there: drawings cover the smaller part of what they are drawn on.
int medianGray(const QImage& picture) {
    std::vector<int> grays;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            grays.push_back(qGray(picture.pixel(x, y)));
    const auto middle = grays.begin() + std::ptrdiff_t(grays.size() / 2);
    std::ranges::nth_element(grays, middle);
    return *middle;
}

} // namespace

QColor colorOnPanel(const DesktopPanel& panel, const QRect& icon) {
    if (!icon.isEmpty() && panel.hasTray())
        if (const auto color = panel.trayColor())
            return *color;
    const auto seen = icon.isEmpty() ? panel.end() : icon;
    auto background = QGuiApplication::palette().color(QPalette::Window);
    if (auto* screen = seen.isEmpty() ? nullptr : QGuiApplication::screenAt(seen.center())) {
        const auto corner = seen.topLeft() - screen->geometry().topLeft();
        if (const auto picture = screen->grabWindow(0, corner.x(), corner.y(), seen.width(), seen.height());
            !picture.isNull())
            background = QColor::fromHsl(0, 0, medianGray(picture.toImage()));
    }
    return qGray(background.rgb()) < middleGray ? onDark : onLight;
}

} // namespace platform::desktop
