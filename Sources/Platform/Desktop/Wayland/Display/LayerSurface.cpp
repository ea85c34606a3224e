#include "Platform/Desktop/Wayland/Display/LayerSurface.h"

#include <cmath>
#include <cstring>

#include <QPainter>

namespace platform::desktop {
namespace {

// In points. Multiples of four, so that they are whole pixels at every scale in quarters.
constexpr int usualWidth = 720;
constexpr int usualHeight = 160;
constexpr int step = 4;

// The compositor shows one, and may not have given the one before back.
constexpr std::size_t mostPictures = 3;

int roundedUp(double length, int least) {
    return std::max(least, static_cast<int>(std::ceil(length / step)) * step);
}

QRect scaled(const QRect& rect, double factor) {
    return QRectF(rect.x() * factor, rect.y() * factor, rect.width() * factor, rect.height() * factor)
        .toAlignedRect();
}

} // namespace

LayerSurface::~LayerSurface() {
    close();
    shell.connection.flush();
}

void LayerSurface::show(const QRect& place, const QImage& image, const QRect& changed,
                        const std::optional<std::vector<QRect>>& shape) {
    const auto on = findGround(place);
    if (!on)
        return;
    // In the middle of the output, and as far below its upper edge as there is.
    const auto fromMiddle = std::abs(place.center().x() - on->pixels.center().x()) + place.width() / 2 + 1;
    const QSize room(roundedUp(2 * fromMiddle / on->scale, usualWidth),
                     roundedUp((place.y() + place.height() - on->pixels.y()) / on->scale, usualHeight));
    const QSize roomInPixels = (QSizeF(room) * on->scale).toSize();
    if (!layer || ground != on || roomInPixels.width() > pixels.width()
        || roomInPixels.height() > pixels.height())
        open(*on, room);
    const QPoint shift((pixels.width() - on->pixels.width()) / 2 - on->pixels.x(), -on->pixels.y());
    const auto before = wantedPlace;
    wanted = image;
    wantedPlace = place.translated(shift);
    auto differs = QRegion(changed.translated(shift));
    if (wantedPlace != before)
        differs += QRegion(before) + QRegion(wantedPlace);
    changes += differs;
    for (const auto& picture : pictures)
        picture->stale += differs;
    if (shape)
        takeClicks(*shape);
    present();
}

void LayerSurface::open(const Ground& on, QSize room) {
    close();
    ground = on;
    pixels = (QSizeF(room) * on.scale).toSize();
    surface.reset(wl_compositor_create_surface(shell.compositor.get()));
    layer.reset(zwlr_layer_shell_v1_get_layer_surface(shell.shell.get(), surface.get(), on.output,
                                                      ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, "lumarin"));
    static constexpr zwlr_layer_surface_v1_listener listener{
        [](void* self, zwlr_layer_surface_v1*, std::uint32_t serial, std::uint32_t, std::uint32_t) {
            static_cast<LayerSurface*>(self)->configure(serial);
        },
        // Its output has gone; it is opened on another one as soon as something is shown.
        [](void* self, zwlr_layer_surface_v1*) { static_cast<LayerSurface*>(self)->close(); }};
    zwlr_layer_surface_v1_add_listener(layer.get(), &listener, this);
    zwlr_layer_surface_v1_set_size(layer.get(), static_cast<std::uint32_t>(room.width()),
                                   static_cast<std::uint32_t>(room.height()));
    zwlr_layer_surface_v1_set_anchor(layer.get(), ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP);
    takeClicks({});
    if (shell.viewporter) {
        viewport.reset(wp_viewporter_get_viewport(shell.viewporter.get(), surface.get()));
        wp_viewport_set_destination(viewport.get(), room.width(), room.height());
    } else {
        wl_surface_set_buffer_scale(surface.get(), static_cast<std::int32_t>(std::lround(on.scale)));
    }
    wl_surface_commit(surface.get());
    shell.connection.flush();
}

void LayerSurface::close() {
    viewport.reset();
    layer.reset();
    surface.reset();
    pictures.clear();
    isConfigured = false;
    wantedPlace = {};
    ground.reset();
}

void LayerSurface::configure(std::uint32_t serial) {
    zwlr_layer_surface_v1_ack_configure(layer.get(), serial);
    isConfigured = true;
    present();
}

void LayerSurface::present() {
    if (!isConfigured || changes.isEmpty())
        return;
    auto* const picture = freePicture();
    if (!picture)
        return;
    copyInto(*picture);
    wl_surface_attach(surface.get(), picture->buffer(), 0, 0);
    for (const auto& part : changes& QRect({}, pixels))
        wl_surface_damage_buffer(surface.get(), part.x(), part.y(), part.width(), part.height());
    wl_surface_commit(surface.get());
    picture->isInUse = true;
    changes = {};
    shell.connection.flush();
}

SharedPicture* LayerSurface::freePicture() {
    for (const auto& picture : pictures)
        if (!picture->isInUse)
            return picture.get();
    if (pictures.size() == mostPictures)
        return nullptr;
    auto made = SharedPicture::make(*shell.memory, pixels);
    if (!made)
        return nullptr;
    made->onRelease = [this] { present(); };
    pictures.push_back(std::move(made));
    return pictures.back().get();
}

void LayerSurface::copyInto(SharedPicture& picture) const {
    QPainter painter(&picture.image());
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    for (const auto& part : picture.stale) {
        painter.fillRect(part, Qt::transparent);
        const auto common = part & wantedPlace;
        if (!common.isEmpty())
            painter.drawImage(common.topLeft(), wanted, common.translated(-wantedPlace.topLeft()));
    }
    picture.stale = {};
}

void LayerSurface::takeClicks(const std::vector<QRect>& shape) const {
    const WaylandOwned<wl_region> region(wl_compositor_create_region(shell.compositor.get()));
    for (const auto& part : shape) {
        const auto points = scaled(part.translated(wantedPlace.topLeft()), 1 / ground->scale);
        wl_region_add(region.get(), points.x(), points.y(), points.width(), points.height());
    }
    wl_surface_set_input_region(surface.get(), region.get());
}

} // namespace platform::desktop
