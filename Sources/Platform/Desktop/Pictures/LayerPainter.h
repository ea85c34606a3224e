#pragma once

#include "Platform/Desktop/Painting/Outline.h"
#include "Platform/Desktop/Painting/TextPainter.h"
#include "Platform/Desktop/Pictures/Backdrop.h"
#include "Platform/Desktop/Pictures/ControlPainter.h"
#include "Platform/Kit/LayerPresentation.h"

#include <deque>
#include <optional>

namespace platform::desktop {

// Paints layers. Main thread.
class LayerPainter {
public:
    // Without one it paints no symbols and no buttons. Not owned.
    explicit LayerPainter(ControlPainter* painter = nullptr) : controls(painter) {}

    // The layer and all below it onto the picture, whose first pixel is at `corner`. The grid is that of what
    // holds the layer; letters are made for `scale`.
    void paint(const LayerPresentation& layer, QImage& picture, const QPoint& corner, const PixelGrid& grid,
               double scale, Backdrop backdrop);

private:
    // What is painted on, which pixels of all it has, and what will be cut out of it in the end.
    struct Canvas {
        QImage& image;
        QPainter& painter;
        QRect area;
        std::optional<Outline> mask;
    };

    void paintLayer(const LayerPresentation& layer, const Canvas& canvas, const PixelGrid& grid,
                    double opacity);
    void paintGroup(const LayerPresentation& layer, const Canvas& canvas, const PixelGrid& grid,
                    const Outline& outline, double opacity);
    void paintContent(const LayerPresentation& layer, const Canvas& canvas, const PixelGrid& grid,
                      const Outline& outline, double opacity);
    void paintEffect(const VisualEffect& effect, const Canvas& canvas, const Outline& outline) const;

    ControlPainter* const controls;
    TextPainter texts;
    double letterScale = 1;
    Backdrop backdrop = Backdrop::none;
    // For the groups under way, the outermost first; they are kept from frame to frame.
    std::deque<QImage> groups;
    std::size_t groupsInUse = 0;
};

// The pixels that a layer with that outline may cover, whichever way it is turned if it is.
QRect extentOf(const Outline& outline, bool isTurned);

// Where a layer lies in the grid of what holds it.
PixelGrid gridOf(const LayerState& layer, const PixelGrid& grid);

} // namespace platform::desktop
