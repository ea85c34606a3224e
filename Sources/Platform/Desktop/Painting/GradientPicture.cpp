#include "Platform/Desktop/Painting/GradientPicture.h"

#include "Platform/Desktop/Painting/DeepColor.h"

#include <cmath>
#include <vector>

namespace platform::desktop {
namespace {

using Ramp = std::vector<DeepColor>;

Color premultiplied(const Color& color, double opacity) {
    const double alpha = color.alpha * opacity;
    return {color.red * alpha, color.green * alpha, color.blue * alpha, alpha};
}

Ramp rampOf(const LayerState& layer, double opacity, std::size_t steps) {
    const auto last = layer.colors.size() - 1;
    const auto location = [&](std::size_t index) {
        if (layer.locations.size() == layer.colors.size())
            return layer.locations[index];
        return last == 0 ? 0.0 : static_cast<double>(index) / static_cast<double>(last);
    };
    Ramp ramp(steps);
    std::size_t next = 0;
    for (std::size_t step = 0; step < steps; ++step) {
        const double place = (static_cast<double>(step) + 0.5) / static_cast<double>(steps);
        while (next <= last && location(next) <= place)
            ++next;
        const auto right = premultiplied(layer.colors[std::min(next, last)], opacity);
        const auto left = premultiplied(layer.colors[next > 0 ? next - 1 : 0], opacity);
        const double start = next > 0 ? location(next - 1) : 0;
        const double share = next > 0 && next <= last ? (place - start) / (location(next) - start) : 0;
        const auto blend = [&](double from, double to) {
            return DeepColor::deep(from + (to - from) * share);
        };
        ramp[step] = {blend(left.red, right.red), blend(left.green, right.green),
                      blend(left.blue, right.blue), blend(left.alpha, right.alpha)};
    }
    return ramp;
}

} // namespace

QImage gradientPicture(const LayerState& layer, double opacity, const QRectF& bounds, const QRect& area) {
    const QPointF start(bounds.left() + layer.startPoint.x * bounds.width(),
                        bounds.bottom() - layer.startPoint.y * bounds.height());
    const QPointF way((layer.endPoint.x - layer.startPoint.x) * bounds.width(),
                      (layer.startPoint.y - layer.endPoint.y) * bounds.height());
    const double square = QPointF::dotProduct(way, way);
    // One to a pixel.
    const double steps = std::max(1.0, std::ceil(std::sqrt(square)));
    const auto ramp = rampOf(layer, opacity, static_cast<std::size_t>(steps));
    const QPointF slope = square > 0 ? way / square * steps : QPointF();
    QImage picture(area.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < picture.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(picture.scanLine(y));
        // Across a level gradient the rows repeat themselves.
        if (way.y() == 0 && y >= DeepColor::period) {
            std::copy_n(reinterpret_cast<const QRgb*>(picture.constScanLine(y - DeepColor::period)),
                        picture.width(), row);
            continue;
        }
        double step = QPointF::dotProduct(QPointF(area.topLeft()) + QPointF(0.5, y + 0.5) - start, slope);
        for (int x = 0; x < picture.width(); ++x, step += slope.x())
            row[x] = ramp[static_cast<std::size_t>(std::clamp(step, 0.0, steps - 1))].dithered(x, y);
    }
    return picture;
}

} // namespace platform::desktop
