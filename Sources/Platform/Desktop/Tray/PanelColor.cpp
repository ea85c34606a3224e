#include "Platform/Desktop/Tray/PanelColor.h"

#include "Platform/Desktop/X11/Display/PanelEnd.h"

#include <algorithm>
#include <optional>

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

// Four colours of three channels each, the one for ordinary icons first.
std::optional<QColor> colorOfTray(const XConnection& x, xcb_window_t tray) {
    const auto property = x.property(tray, x.atom("_NET_SYSTEM_TRAY_COLORS"));
    const auto channels = property ? property->values() : std::vector<std::uint32_t>{};
    if (channels.size() < 3)
        return std::nullopt;
    auto channel = [&](std::size_t index) { return int(std::min(channels[index] >> 8U, 255U)); };
    return QColor(channel(0), channel(1), channel(2));
}

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

QColor colorOnPanel(const XConnection& x, xcb_window_t classicTray, const QRect& icon) {
    if (!icon.isEmpty() && classicTray != XCB_NONE)
        if (const auto color = colorOfTray(x, classicTray))
            return *color;
    const auto seen = icon.isEmpty() ? endOfPanel(x) : icon;
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
