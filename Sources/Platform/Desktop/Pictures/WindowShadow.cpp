#include "Platform/Desktop/Pictures/WindowShadow.h"

#include "Platform/Desktop/Painting/DeepColor.h"

#include <cmath>
#include <numbers>
#include <vector>

#include <QMargins>

namespace platform::desktop {
namespace {

// In points: one that lifts the window off the desktop, and a close one that marks its edge on a light one.
struct Light {
    double strength;
    double blur;
    double drop;
};
constexpr Light high{0.34, 9, 5};
constexpr Light close{0.30, 1.2, 0.5};

// A light's shadow at any distance from the outline, looked up: the curve takes long to compute.
class Falloff {
public:
    Falloff(const Light& light, double scale)
        : drop(light.drop * scale), perPixel(middle / (3 * light.blur * scale)) {
        for (int index = 0; index < 2 * middle; ++index) {
            const double deviations = 3.0 * (index - middle) / middle;
            table[static_cast<std::size_t>(index)] =
                light.strength * 0.5 * std::erfc(deviations / std::numbers::sqrt2);
        }
        // It ends where the curve is all but zero.
        table.back() = 0;
    }

    double at(double x, double y, const Outline& outline) const {
        const double index = outline.distance(x, y - drop) * perPixel + middle;
        return table[static_cast<std::size_t>(std::clamp(index, 0.0, 2.0 * middle - 1))];
    }

private:
    static constexpr int middle = 256;

    const double drop;
    const double perPixel;
    std::array<double, std::size_t{2} * middle> table{};
};

} // namespace

void paintShadow(QImage& picture, const QPoint& corner, const Outline& outline, double scale) {
    const Falloff highFalloff(high, scale);
    const Falloff closeFalloff(close, scale);
    const auto at = [&](int x, int y) {
        const double left = corner.x() + x + 0.5;
        const double top = corner.y() + y + 0.5;
        const double dark = highFalloff.at(left, top, outline);
        const double darker = closeFalloff.at(left, top, outline);
        return DeepColor{.alpha = DeepColor::deep(dark + darker - dark * darker)};
    };
    const int width = picture.width();
    const int straight = std::clamp(outline.firstStraightColumn() - corner.x(), 0, width);
    const int end = std::clamp(outline.lastStraightColumn() - corner.x(), straight, width);
    const auto reached = outline.rect.toAlignedRect()
                             .marginsAdded(QMargins() + static_cast<int>(std::ceil(shadowReach * scale)))
                             .translated(-corner)
                         & picture.rect();
    picture.fill(Qt::transparent);
    // Most often the right end is the left one's mirror image, pixel by pixel.
    const double columns = 2 * (outline.rect.center().x() - corner.x());
    const bool isSymmetric = columns == std::floor(columns);
    std::vector<DeepColor> leftEnd(static_cast<std::size_t>(straight));
    for (int y = reached.top(); y <= reached.bottom(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = reached.left(); x < straight; ++x) {
            auto& color = leftEnd[static_cast<std::size_t>(x)] = at(x, y);
            row[x] = color.dithered(x, y);
        }
        if (end > straight) {
            const auto color = at((straight + end) / 2, y);
            for (int x = straight; x < end; ++x)
                row[x] = x < straight + DeepColor::period ? color.dithered(x, y) : row[x - DeepColor::period];
        }
        for (int x = end; x <= reached.right(); ++x) {
            const auto mirrored = static_cast<std::size_t>(columns - 1 - x);
            row[x] = (isSymmetric && mirrored < leftEnd.size() ? leftEnd[mirrored] : at(x, y)).dithered(x, y);
        }
    }
}

} // namespace platform::desktop
