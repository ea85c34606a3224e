#include "Platform/Desktop/Windows/ShownWindow.h"

#include "Platform/Desktop/Painting/SolidSpans.h"
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

ShownWindow::ShownWindow(Display& display, Window& shownWindow, double scale)
    : window(shownWindow),
      surface(
          display.makeSurface(static_cast<int>(std::ceil(shownWindow.hasShadow ? shadowReach * scale : 0)))) {
}

void ShownWindow::draw(Duration time, const PixelGrid& grid, Backdrop backdrop) {
    const auto shown = window.presentation(time);
    picture.paint(shown, window.hasShadow, grid, backdrop);
    const bool isFaded = std::exchange(opacity, shown.opacity) != shown.opacity;
    const auto changed = isFaded || shown.opacity < 1 ? picture.place() : picture.changed();
    std::optional<std::vector<QRect>> shape;
    if (changed == picture.place()) {
        // Some compositors blur what is behind the whole of a translucent window: nothing is to be seen
        // beyond where the shadow ends for the eye.
        shape = spans(backdrop == Backdrop::none ? inside : visible);
        if (backdrop == Backdrop::blurred)
            surface->setBlurredRegion(spans(inside));
    }
    // Without a backdrop the shape alone says what is there, and pixels at the edge are the inside's.
    if (backdrop == Backdrop::none)
        surface->show(picture.place(), picture.image().convertToFormat(QImage::Format_RGB32), changed, shape);
    else if (shown.opacity < 1)
        surface->show(picture.place(), faded(picture.image(), shown.opacity), changed, shape);
    else
        surface->show(picture.place(), picture.image(), changed, shape);
}

std::vector<QRect> ShownWindow::spans(int density) const {
    return opacity > 0 ? solidSpans(picture.image(), density) : std::vector<QRect>();
}

} // namespace platform::desktop
