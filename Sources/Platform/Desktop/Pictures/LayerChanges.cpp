#include "Platform/Desktop/Pictures/LayerChanges.h"

#include "Platform/Desktop/Pictures/LayerPainter.h"

namespace platform::desktop {
namespace {

// Farther than any window reaches.
constexpr double beyond = 1e5;

// A text may be wider and higher than its place, at whose top it begins; accents reach out of it.
QRectF reachOf(const TextLine& line, const PixelGrid& grid) {
    const double letters = line.font.size * grid.scale.height;
    const double below = line.lineBreakMode == LineBreakMode::wordWrapping ? beyond : 2 * letters;
    return grid.pixelsOf(line.place).adjusted(-beyond, -letters / 2, beyond, below);
}

QRectF reachOf(const LayerPresentation& layer, const PixelGrid& grid) {
    const auto own = gridOf(layer, grid);
    const Outline outline(own.pixelsOf(layer.bounds()), 0);
    QRectF reach = extentOf(outline, layer.rotation != 0);
    if (layer.masksToBounds || layer.rotation != 0)
        return reach;
    for (const auto& line : layer.drawing.lines)
        reach |= reachOf(line, own);
    for (const auto& sublayer : layer.sublayers)
        reach |= reachOf(sublayer, own);
    return reach;
}

} // namespace

QRectF changedArea(const LayerPresentation& before, const LayerPresentation& after, const PixelGrid& grid) {
    const LayerState& state = after;
    if (before != state || before.drawing != after.drawing
        || before.sublayers.size() != after.sublayers.size())
        return reachOf(before, grid) | reachOf(after, grid);
    const auto own = gridOf(after, grid);
    QRectF area;
    for (std::size_t index = 0; index < after.sublayers.size(); ++index)
        area |= changedArea(before.sublayers[index], after.sublayers[index], own);
    // What is in it is turned with it.
    return area.isNull() || after.rotation == 0 ? area : reachOf(after, grid);
}

} // namespace platform::desktop
