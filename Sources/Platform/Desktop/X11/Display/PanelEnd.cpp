#include "Platform/Desktop/X11/Display/PanelEnd.h"

#include "Platform/Desktop/X11/Display/Monitors.h"

namespace platform::desktop {
namespace {

QRect endOfPanel(const QRect& all, const QRect& free) {
    constexpr int length = 64;
    if (free.top() > all.top())
        return {all.right() + 1 - length, all.top(), length, free.top() - all.top()};
    if (free.bottom() < all.bottom())
        return {all.right() + 1 - length, free.bottom() + 1, length, all.bottom() - free.bottom()};
    if (free.right() < all.right())
        return {free.right() + 1, all.bottom() + 1 - length, all.right() - free.right(), length};
    if (free.left() > all.left())
        return {all.left(), all.bottom() + 1 - length, free.left() - all.left(), length};
    return {};
}

} // namespace

// The toolkit itself tells what is free of panels only where there is one monitor.
QRect endOfPanel(const XConnection& x) {
    for (const auto& [pixels, screen, grid] : monitorsOf(x)) {
        const auto onScreen = [&pixels = pixels, &frame = screen.frame](const Rect& part) {
            return QRectF(pixels.x() + part.x - frame.x, pixels.y() + frame.maxY() - part.maxY(), part.width,
                          part.height)
                .toRect();
        };
        const auto end = endOfPanel(onScreen(screen.frame), onScreen(screen.visibleFrame));
        if (!end.isEmpty())
            return end;
    }
    return {};
}

} // namespace platform::desktop
