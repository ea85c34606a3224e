#pragma once

#include "Platform/Desktop/Pictures/LayerPainter.h"
#include "Platform/Desktop/Pictures/WindowShadow.h"

#include <optional>

namespace platform::desktop {

// What a window looks like with its shadow, kept from frame to frame: only what is new is painted. Main
// thread.
class WindowPicture {
public:
    // The grid is that of the screen. Without a backdrop there is no shadow, and nothing half transparent but
    // the edges.
    void paint(const LayerPresentation& window, bool hasShadow, const PixelGrid& grid, Backdrop backdrop);

    const QImage& image() const { return picture; }
    // Where the image lies, in the pixels of the display. Grows with the window and does not shrink.
    const QRect& place() const { return covered; }
    // What the last painting has changed, in the pixels of the display: all, or the inside of the outline.
    const QRect& changed() const { return news; }

private:
    struct Surroundings {
        Outline outline;
        double scale = 1;
        Backdrop backdrop = Backdrop::none;
        bool hasShadow = false;

        bool operator==(const Surroundings&) const = default;
    };

    void paintSurroundings(const Surroundings& now);
    bool makeRoom(const QRect& needed, double scale);

    LayerPainter layers;
    QImage picture;
    // What is behind the window in it.
    QImage surroundings;
    QRect covered;
    QRect news;
    std::optional<Surroundings> painted;
};

} // namespace platform::desktop
