#pragma once

#include "Platform/Desktop/Windows/Surface.h"
#include "Platform/Desktop/X11/Display/StackingWatch.h"

namespace platform::desktop {

// A surface on an X server, unknown to the window manager: what comes before it, it comes before again. Main
// thread.
class WindowSurface : public Surface {
public:
    // Needs XFIXES 2.
    WindowSurface(const XConnection& x, StackingWatch& stacking, int margin);
    ~WindowSurface() override;
    WindowSurface(const WindowSurface&) = delete;
    WindowSurface& operator=(const WindowSurface&) = delete;

    void show(const QRect& place, const QImage& image, const QRect& changed,
              const std::optional<std::vector<QRect>>& shape) override;
    void setBlurredRegion(const std::vector<QRect>& region) override;
    // Before all others.
    void raise() const;

private:
    void describe(int margin) const;
    void put(const QImage& pixels, const QPoint& corner) const;

    const XConnection& x;
    StackingWatch& stacking;
    xcb_window_t window = XCB_NONE;
    xcb_gcontext_t context = XCB_NONE;
    xcb_colormap_t colors = XCB_NONE;
    // The window's background: the server repaints it by itself.
    xcb_pixmap_t pixmap = XCB_NONE;
    std::uint8_t depth = 0;
    QRect shown;
};

} // namespace platform::desktop
