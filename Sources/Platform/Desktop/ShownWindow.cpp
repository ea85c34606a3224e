#include "Platform/Desktop/ShownWindow.h"

#include "Platform/Desktop/SolidSpans.h"
#include "Platform/Kit/Window.h"

#include <cmath>
#include <utility>

#include <QPainter>

namespace platform::desktop {
namespace {

QImage faded(QImage image, double opacity) {
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.fillRect(image.rect(), QColor::fromRgbF(0, 0, 0, static_cast<float>(opacity)));
    return image;
}

} // namespace

ShownWindow::ShownWindow(const XConnection& x, Window& shownWindow, double scale)
    : window(shownWindow),
      surface(x, static_cast<int>(std::ceil(shownWindow.hasShadow ? shadowReach * scale : 0))) {}

void ShownWindow::draw(Duration time, const PixelGrid& grid, Backdrop backdrop) {
    const auto shown = window.presentation(time);
    picture.paint(shown, window.hasShadow, grid, backdrop);
    const bool isFaded = std::exchange(opacity, shown.opacity) != shown.opacity;
    const auto changed = isFaded || shown.opacity < 1 ? picture.place() : picture.changed();
    if (changed == picture.place())
        shapeSurface(backdrop, shown.opacity > 0);
    // Without a backdrop the shape alone says what is there, and pixels at the edge are the inside's.
    if (backdrop == Backdrop::none)
        surface.show(picture.place(), picture.image().convertToFormat(QImage::Format_RGB32), changed);
    else if (shown.opacity < 1)
        surface.show(picture.place(), faded(picture.image(), shown.opacity), changed);
    else
        surface.show(picture.place(), picture.image(), changed);
}

void ShownWindow::shapeSurface(Backdrop backdrop, bool isVisible) {
    const auto solid = isVisible && backdrop != Backdrop::plain ? solidSpans(picture.image())
                                                                : std::vector<xcb_rectangle_t>();
    surface.setShape(backdrop == Backdrop::none ? &solid : nullptr);
    surface.setBlurredRegion(backdrop == Backdrop::blurred ? solid : std::vector<xcb_rectangle_t>());
}

} // namespace platform::desktop
