#pragma once

#include "Platform/Desktop/X11/Server/XConnection.h"

#include <QImage>
#include <QRect>

namespace platform::desktop {

// A window of the X server that shows pixels: above all others, on every workspace, unknown to the window
// manager, and nothing to the keyboard and the pointer, which reaches what is below. On the display for as
// long as it lives. Main thread.
class WindowSurface {
public:
    // `margin` pixels on each side are shadow. Needs XFIXES 2.
    WindowSurface(const XConnection& x, int margin);
    ~WindowSurface();
    WindowSurface(const WindowSurface&) = delete;
    WindowSurface& operator=(const WindowSurface&) = delete;

    // `image` lies at `place` and differs from what was shown in `changed`, both in pixels of the display; of
    // it there is to be only `shape`, or the same as before. Comes up at the first time, in front.
    void show(const QRect& place, const QImage& image, const QRect& changed,
              const std::optional<std::vector<xcb_rectangle_t>>& shape);

    // Before all others.
    void raise() const;

    // Where a compositor that can is to blur what is behind.
    void setBlurredRegion(const std::vector<xcb_rectangle_t>& region) const;

private:
    void describe(int margin) const;
    void put(const QImage& pixels, const QPoint& corner) const;

    const XConnection& x;
    xcb_window_t window = XCB_NONE;
    xcb_gcontext_t context = XCB_NONE;
    xcb_colormap_t colors = XCB_NONE;
    // The window's background: the server repaints it by itself.
    xcb_pixmap_t pixmap = XCB_NONE;
    std::uint8_t depth = 0;
    QRect shown;
};

} // namespace platform::desktop
