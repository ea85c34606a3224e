#include "Platform/Desktop/Pictures/WindowPicture.h"

#include "Platform/Desktop/Painting/ColorOf.h"

#include <cmath>

#include <QPainter>

namespace platform::desktop {
namespace {

// A window on its way grows by many pixels at once.
constexpr int slack = 32;

QRect withSlack(const QRect& rect) {
    const auto down = [](int value) { return static_cast<int>(std::floor(value / double{slack})) * slack; };
    const auto up = [&](int value) { return down(value + slack - 1); };
    const QPoint corner(down(rect.x()), down(rect.y()));
    return {corner,
            QSize(up(rect.x() + rect.width()) - corner.x(), up(rect.y() + rect.height()) - corner.y())};
}

// A window with a background is a rectangle; without one it has the shape of its content.
Outline outlineOf(const LayerPresentation& window, const PixelGrid& inside) {
    if (window.backgroundColor.alpha > 0 || window.sublayers.empty())
        return {inside.pixelsOf(window.bounds()), 0};
    const auto& content = window.sublayers.front();
    const auto grid = gridOf(content, inside);
    return {grid.pixelsOf(content.bounds()), content.cornerRadius * grid.scale.height};
}

// Whether nothing is painted outside the outline.
bool staysInside(const LayerPresentation& window) {
    return window.backgroundColor.alpha == 0 && window.sublayers.size() == 1
           && window.sublayers.front().masksToBounds;
}

} // namespace

void WindowPicture::paint(const LayerPresentation& window, bool hasShadow, const PixelGrid& grid,
                          Backdrop backdrop) {
    const auto inside = gridOf(window, grid);
    const double scale = grid.scale.width;
    const Surroundings now{outlineOf(window, inside), scale, backdrop,
                           hasShadow && backdrop != Backdrop::none};
    const int reach = static_cast<int>(std::ceil(now.hasShadow ? shadowReach * scale : 1));
    const auto body = now.outline.rect.toAlignedRect();
    if (makeRoom(body.adjusted(-reach, -reach, reach, reach), scale) || painted != now) {
        paintSurroundings(now);
        news = covered;
    } else {
        news = staysInside(window) ? body : covered;
    }
    QPainter painter(&picture);
    painter.translate(-covered.topLeft());
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(news.topLeft(), surroundings, news.translated(-covered.topLeft()));
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    if (window.backgroundColor.alpha > 0)
        painter.fillRect(inside.pixelsOf(window.bounds()), colorOf(window.backgroundColor));
    painter.end();
    for (const auto& layer : window.sublayers)
        layers.paint(layer, picture, covered.topLeft(), inside, scale, backdrop);
}

void WindowPicture::paintSurroundings(const Surroundings& now) {
    if (now.hasShadow)
        paintShadow(surroundings, covered.topLeft(), now.outline, now.scale);
    else
        surroundings.fill(Qt::transparent);
    painted = now;
}

bool WindowPicture::makeRoom(const QRect& needed, double scale) {
    const bool isElsewhere = !painted || painted->scale != scale || !covered.intersects(needed);
    if (!isElsewhere && covered.contains(needed))
        return false;
    covered = withSlack(isElsewhere ? needed : covered | needed);
    picture = QImage(covered.size(), QImage::Format_ARGB32_Premultiplied);
    surroundings = picture.copy();
    return true;
}

} // namespace platform::desktop
