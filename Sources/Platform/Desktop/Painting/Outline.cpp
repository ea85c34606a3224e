#include "Platform/Desktop/Painting/Outline.h"

#include "Platform/Desktop/Painting/ColorOf.h"

namespace platform::desktop {
namespace {

// How much of a pixel lies inside an edge at that distance from its middle, of 255, rounded.
unsigned coverage(double distance) {
    return static_cast<unsigned>(std::clamp(128 - 255 * distance, 0.0, 255.0));
}

constexpr QRgb scaled(QRgb color, unsigned share) {
    constexpr QRgb pair = 0xFF00FF;
    const auto multiplied = [&](QRgb two) {
        return (two * share + (two * share >> 8U & pair) + 0x800080) >> 8U & pair;
    };
    return multiplied(color & pair) | multiplied(color >> 8U & pair) << 8U;
}

// Calls `change` for the pixels less than `depth` inside the edge, and perhaps others, with the distance of
// their middle from the edge; it is the same for a run of pixels between the corners, which come as one.
template <typename Change>
void forEachRun(QImage& picture, const QPoint& corner, const Outline& outline, double depth, Change change) {
    const int width = picture.width();
    const int straight = std::clamp(outline.firstStraightColumn() - corner.x(), 0, width);
    const int end = std::clamp(outline.lastStraightColumn() - corner.x(), straight, width);
    for (int y = 0; y < picture.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(picture.scanLine(y));
        const double down = corner.y() + y + 0.5;
        const auto each = [&](int first, int behind) {
            for (int x = first; x < behind; ++x)
                change(row + x, 1, down, outline.distance(corner.x() + x + 0.5, down));
        };
        const auto deep = outline.deepColumns(down, depth);
        if (deep.first < deep.second) {
            each(0, std::clamp(deep.first - corner.x(), 0, width));
            each(std::clamp(deep.second - corner.x(), 0, width), width);
            continue;
        }
        each(0, straight);
        if (end > straight) {
            const int inner = (straight + end) / 2;
            change(row + straight, end - straight, down, outline.distance(corner.x() + inner + 0.5, down));
        }
        each(end, width);
    }
}

} // namespace

Outline::Outline(const QRectF& outer, double wishedRadius)
    : rect(outer),
      radius(std::clamp(wishedRadius, 0.0, std::min(outer.width(), outer.height()) / 2)),
      middle(outer.center()),
      straightWidth(outer.width() / 2 - radius),
      straightHeight(outer.height() / 2 - radius) {}

int Outline::firstStraightColumn() const {
    return static_cast<int>(std::ceil(rect.left() + std::max(radius, 1.0)));
}

int Outline::lastStraightColumn() const {
    return static_cast<int>(std::floor(rect.right() - std::max(radius, 1.0)));
}

std::pair<int, int> Outline::deepColumns(double y, double depth) const {
    const double deepRadius = radius - depth;
    const double up = std::max(std::abs(y - middle.y()) - straightHeight, 0.0);
    if (up >= deepRadius)
        return {};
    const double reach = straightWidth + std::sqrt(deepRadius * deepRadius - up * up);
    return {static_cast<int>(std::ceil(middle.x() - reach)),
            static_cast<int>(std::floor(middle.x() + reach))};
}

void clip(QImage& picture, const QPoint& corner, const Outline& outline) {
    forEachRun(picture, corner, outline, 0.5, [](QRgb* pixels, int count, double, double distance) {
        const auto share = coverage(distance);
        if (share < 255)
            std::transform(pixels, pixels + count, pixels, [&](QRgb color) { return scaled(color, share); });
    });
}

void strokeInside(QImage& picture, const QPoint& corner, const Outline& outline, double width,
                  const Color& top, const Color& bottom) {
    const auto colorAt = [&, from = colorOf(top).rgba64(), to = colorOf(bottom).rgba64()](double y) {
        const double share = std::clamp((y - outline.rect.top()) / outline.rect.height(), 0.0, 1.0);
        const auto between = [&](int one, int other) {
            return static_cast<quint16>(one + (other - one) * share);
        };
        return qRgba64(between(from.red(), to.red()), between(from.green(), to.green()),
                       between(from.blue(), to.blue()), between(from.alpha(), to.alpha()))
            .premultiplied()
            .toArgb32();
    };
    double row = 0;
    QRgb rowColor = 0;
    forEachRun(picture, corner, outline, width + 0.5,
               [&](QRgb* pixels, int count, double y, double distance) {
                   const auto share = coverage(distance) - coverage(distance + width);
                   if (share == 0)
                       return;
                   if (std::exchange(row, y) != y)
                       rowColor = colorAt(y);
                   const auto color = scaled(rowColor, share);
                   std::transform(pixels, pixels + count, pixels,
                                  [&](QRgb below) { return color + scaled(below, 255 - qAlpha(color)); });
               });
}

} // namespace platform::desktop
