#include "Platform/Desktop/ShownWindow.h"

#include "Platform/Desktop/SolidSpans.h"
#include "Platform/Kit/Window.h"

#include <cmath>
#include <utility>

#include <QPainter>

namespace platform::desktop {
namespace {

// Densities, of 255.
constexpr int inside = 128;
constexpr int visible = 4;

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
    const auto spans = [&](int density) {
        return isVisible ? solidSpans(picture.image(), density) : std::vector<xcb_rectangle_t>();
    };
    // Some compositors blur what is behind the whole of a translucent window: nothing is to be seen beyond
    // where the shadow ends for the eye.
    surface.setShape(spans(backdrop == Backdrop::none ? inside : visible));
    if (backdrop == Backdrop::blurred)
        surface.setBlurredRegion(spans(inside));
}

} // namespace platform::desktop
