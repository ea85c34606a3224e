#pragma once

#include "Platform/Desktop/Wayland/Display/LayerShell.h"
#include "Platform/Desktop/Wayland/Display/SharedPicture.h"
#include "Platform/Desktop/Windows/Surface.h"

#include <vector>

namespace platform::desktop {

// A surface of the compositor's uppermost layer: larger than what is seen of it, so that what is shown can
// grow without the compositor's being asked. What has a click where something is to be seen is told of it.
// Main thread.
class LayerSurface : public Surface {
public:
    // Where something is to be shown: the output and its place among the pixels of the display.
    struct Ground {
        wl_output* output = nullptr;
        std::uint32_t number = 0;
        QRect pixels;
        double scale = 1;

        bool operator==(const Ground&) const = default;
    };
    using Find = std::function<std::optional<Ground>(const QRect& place)>;

    // `find` says on what a place lies.
    LayerSurface(const LayerShell& layerShell, Find find) : shell(layerShell), findGround(std::move(find)) {}
    ~LayerSurface() override;
    LayerSurface(const LayerSurface&) = delete;
    LayerSurface& operator=(const LayerSurface&) = delete;

    void show(const QRect& place, const QImage& image, const QRect& changed,
              const std::optional<std::vector<QRect>>& shape) override;
    void setBlurredRegion(const std::vector<QRect>& /*region*/) override {}

    bool is(const wl_surface* candidate) const { return candidate && candidate == surface.get(); }

private:
    void open(const Ground& on, QSize room);
    void close();
    void configure(std::uint32_t serial);
    void present();
    SharedPicture* freePicture();
    void copyInto(SharedPicture& picture) const;
    QPoint cornerOn(const Ground& on, QSize room) const;
    void takeClicks(const std::vector<QRect>& shape) const;

    const LayerShell& shell;
    const Find findGround;
    // Of what is open now.
    std::optional<Ground> ground;
    QSize pixels;
    WaylandOwned<wl_surface> surface;
    WaylandOwned<zwlr_layer_surface_v1> layer;
    WaylandOwned<wp_viewport> viewport;
    bool isConfigured = false;
    std::vector<std::unique_ptr<SharedPicture>> pictures;
    // What is to be shown, at its place on the surface in pixels; and where that differs from what is.
    QImage wanted;
    QRect wantedPlace;
    QRegion changes;
};

} // namespace platform::desktop
