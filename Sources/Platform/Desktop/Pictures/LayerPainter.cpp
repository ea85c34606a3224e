#include "Platform/Desktop/Pictures/LayerPainter.h"

#include "Platform/Desktop/Painting/ColorOf.h"
#include "Platform/Desktop/Painting/GradientPicture.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include <QPainter>
#include <QPainterPath>

namespace platform::desktop {
namespace {

// The corners are rounded here unless the mask does it.
void fill(QPainter& painter, const Outline& outline, const std::optional<Outline>& mask,
          const QColor& color) {
    if (mask == outline) {
        painter.fillRect(outline.rect.toAlignedRect(), color);
        return;
    }
    QPainterPath path;
    path.addRoundedRect(outline.rect, outline.radius, outline.radius);
    painter.fillPath(path, color);
}

// The frosted glass's own look: on glass that doesn't blur it is dense enough to read on whatever is behind.
QColor tintOf(const VisualEffect& effect, Backdrop backdrop) {
    const double alpha = backdrop == Backdrop::none ? 1 : backdrop == Backdrop::plain ? 0.92 : 0.74;
    return colorOf(effect.material == VisualEffect::Material::hudWindow
                       ? Color::calibrated(0.11, 0.11, 0.125, alpha)
                       : Color::calibrated(0.93, 0.93, 0.94, std::max(alpha, 0.9)));
}

// Against the clock, by radians.
void turn(QPainter& painter, const QPointF& middle, double angle) {
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.translate(middle);
    painter.rotate(-angle * 180 / std::numbers::pi);
    painter.translate(-middle);
}

} // namespace

QRect extentOf(const Outline& outline, bool isTurned) {
    if (!isTurned)
        return outline.rect.toAlignedRect();
    // Its edges are smoothed by a pixel more.
    const double reach = std::hypot(outline.rect.width(), outline.rect.height()) / 2 + 1;
    const auto middle = outline.rect.center();
    return QRectF(middle.x() - reach, middle.y() - reach, 2 * reach, 2 * reach).toAlignedRect();
}

PixelGrid gridOf(const LayerState& layer, const PixelGrid& grid) {
    const auto& [scale, translation] = layer.transform;
    const auto origin =
        grid.pixelOf({layer.position.x + translation.x - scale.width * layer.size.width / 2,
                      layer.position.y + translation.y - scale.height * layer.size.height / 2});
    return {{grid.scale.width * scale.width, grid.scale.height * scale.height}, {origin.x(), origin.y()}};
}

void LayerPainter::paint(const LayerPresentation& layer, QImage& picture, const QPoint& corner,
                         const PixelGrid& grid, double scale, Backdrop behind) {
    letterScale = scale;
    backdrop = behind;
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(-corner);
    paintLayer(layer, {picture, painter, QRect(corner, picture.size()), std::nullopt}, grid, 1);
}

void LayerPainter::paintLayer(const LayerPresentation& layer, const Canvas& canvas, const PixelGrid& grid,
                              double opacity) {
    opacity *= std::clamp(layer.opacity, 0.0, 1.0);
    const auto own = gridOf(layer, grid);
    const Outline outline(own.pixelsOf(layer.bounds()), layer.cornerRadius * own.scale.height);
    const bool isTurned = layer.rotation != 0;
    if (opacity == 0 || (layer.sublayers.empty() && !extentOf(outline, isTurned).intersects(canvas.area)))
        return;
    const std::size_t things = (layer.drawing.effect ? 1U : 0U) + layer.drawing.lines.size()
                               + layer.drawing.symbols.size() + (layer.drawing.button ? 1U : 0U)
                               + layer.sublayers.size() + (layer.backgroundColor.alpha > 0 ? 1U : 0U)
                               + (layer.colors.empty() ? 0U : 1U) + (layer.borderWidth > 0 ? 1U : 0U);
    if (isTurned) {
        canvas.painter.save();
        turn(canvas.painter, outline.rect.center(), layer.rotation);
    }
    // Of what is turned, only a plain area is painted as sharp as what is not.
    const bool isPlain = things == 1 && layer.backgroundColor.alpha > 0;
    if (layer.masksToBounds || layer.drawing.effect || (opacity < 1 && things > 1) || (isTurned && !isPlain))
        paintGroup(layer, canvas, own, outline, opacity);
    else
        paintContent(layer, canvas, own, outline, opacity);
    if (isTurned)
        canvas.painter.restore();
}

void LayerPainter::paintGroup(const LayerPresentation& layer, const Canvas& canvas, const PixelGrid& grid,
                              const Outline& outline, double opacity) {
    const auto bounds = outline.rect.toAlignedRect();
    const auto area = layer.rotation != 0   ? bounds.adjusted(-1, -1, 1, 1)
                      : layer.masksToBounds ? bounds & canvas.area
                                            : canvas.area;
    if (area.isEmpty())
        return;
    if (groupsInUse == groups.size())
        groups.emplace_back();
    auto& store = groups[groupsInUse++];
    if (store.width() < area.width() || store.height() < area.height())
        store = QImage(area.size().expandedTo(store.size()), QImage::Format_ARGB32_Premultiplied);
    QImage group(store.bits(), area.width(), area.height(), store.bytesPerLine(), store.format());
    group.fill(Qt::transparent);
    QPainter painter(&group);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(-area.topLeft());
    const auto mask = layer.masksToBounds || layer.rotation != 0 ? std::optional(outline) : std::nullopt;
    paintContent(layer, {group, painter, area, mask}, grid, outline, 1);
    painter.end();
    if (mask)
        clip(group, area.topLeft(), outline);
    canvas.painter.setOpacity(opacity);
    canvas.painter.drawImage(area.topLeft(), group);
    canvas.painter.setOpacity(1);
    --groupsInUse;
}

void LayerPainter::paintContent(const LayerPresentation& layer, const Canvas& canvas, const PixelGrid& grid,
                                const Outline& outline, double opacity) {
    auto& painter = canvas.painter;
    painter.setOpacity(opacity);
    if (layer.drawing.effect)
        paintEffect(*layer.drawing.effect, canvas, outline);
    if (layer.backgroundColor.alpha > 0)
        fill(painter, outline, canvas.mask, colorOf(layer.backgroundColor));
    if (const auto area = outline.rect.toAlignedRect() & canvas.area;
        !layer.colors.empty() && !area.isEmpty()) {
        auto picture = gradientPicture(layer, opacity, outline.rect, area);
        if (canvas.mask != outline)
            clip(picture, area.topLeft(), outline);
        painter.setOpacity(1);
        painter.drawImage(area.topLeft(), picture);
        painter.setOpacity(opacity);
    }
    if (controls) {
        for (const auto& symbol : layer.drawing.symbols)
            controls->paint(painter, symbol, grid.pixelsOf(symbol.place));
        if (layer.drawing.button)
            controls->paint(painter, *layer.drawing.button, outline.rect, letterScale);
    }
    for (const auto& line : layer.drawing.lines)
        texts.paint(painter, line, grid, letterScale);
    painter.setOpacity(1);
    for (const auto& sublayer : layer.sublayers)
        paintLayer(sublayer, canvas, grid, opacity);
    if (layer.borderWidth > 0) {
        const auto color = layer.borderColor.withAlphaComponent(layer.borderColor.alpha * opacity);
        strokeInside(canvas.image, canvas.area.topLeft(), outline, layer.borderWidth * grid.scale.height,
                     color, color);
    }
}

void LayerPainter::paintEffect(const VisualEffect& effect, const Canvas& canvas,
                               const Outline& outline) const {
    fill(canvas.painter, outline, canvas.mask, tintOf(effect, backdrop));
    // The edge catches the light from above, which sets dark glass off from a dark desktop.
    if (effect.material == VisualEffect::Material::hudWindow)
        strokeInside(canvas.image, canvas.area.topLeft(), outline, letterScale, Color::white(1, 0.2),
                     Color::white(1, 0.06));
}

} // namespace platform::desktop
