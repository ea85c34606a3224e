#include "Platform/Desktop/X11/Display/Monitors.h"

#include "Platform/Desktop/X11/Display/UsableArea.h"
#include "Platform/Desktop/X11/Display/WindowPlace.h"
#include "Platform/Desktop/X11/Server/ActiveWindow.h"

#include <algorithm>

#include <QGuiApplication>
#include <QScreen>
#include <xcb/randr.h>

namespace platform::desktop {
namespace {

// Without the extension the display is one monitor.
std::vector<QRect> outlines(const XConnection& x) {
    const auto* extension = xcb_get_extension_data(x, &xcb_randr_id);
    auto answer = extension && extension->present
                      ? x.reply(xcb_randr_get_monitors_reply, xcb_randr_get_monitors(x, x.root(), 1))
                      : nullptr;
    if (!answer)
        return {QRect(0, 0, x.screen().width_in_pixels, x.screen().height_in_pixels)};
    std::vector<QRect> result;
    for (auto next = xcb_randr_get_monitors_monitors_iterator(answer.get()); next.rem;
         xcb_randr_monitor_info_next(&next)) {
        const QRect outline(next.data->x, next.data->y, next.data->width, next.data->height);
        result.insert(next.data->primary ? result.begin() : result.end(), outline);
    }
    return result;
}

// Of the monitor whose upper left corner is there: that one Qt counts in pixels.
double scaleAt(const QPoint& corner) {
    const auto screens = QGuiApplication::screens();
    const auto found =
        std::ranges::find(screens, corner, [](auto* screen) { return screen->geometry().topLeft(); });
    return found != screens.end() ? (*found)->devicePixelRatio() : qGuiApp->devicePixelRatio();
}

} // namespace

std::vector<Monitor> monitorsOf(const XConnection& x) {
    std::vector<Monitor> monitors;
    const auto all = outlines(x);
    const UsableArea area(x, all);
    for (const auto& pixels : all) {
        const double scale = scaleAt(pixels.topLeft());
        const double height = pixels.height() / scale;
        const Rect frame{double(pixels.x()), x.screen().height_in_pixels - pixels.y() - height,
                         pixels.width() / scale, height};
        const auto usable = area.of(pixels);
        const Rect visible{frame.x + (usable.x() - pixels.x()) / scale,
                           frame.maxY() - (usable.y() + usable.height() - pixels.y()) / scale,
                           usable.width() / scale, usable.height() / scale};
        const PixelGrid grid{{scale, scale},
                             {pixels.x() - frame.x * scale, pixels.y() + frame.maxY() * scale}};
        monitors.push_back({pixels, {frame, visible, scale}, grid});
    }
    return monitors;
}

const Monitor& mainMonitor(const XConnection& x, const std::vector<Monitor>& monitors) {
    if (monitors.size() == 1)
        return monitors.front();
    const auto outline = placeOf(x, activeWindow(x));
    if (!outline)
        return monitors.front();
    return *std::ranges::max_element(monitors, {}, [&](const Monitor& monitor) {
        const auto common = monitor.pixels & *outline;
        return common.isEmpty() ? 0 : common.width() * common.height();
    });
}

} // namespace platform::desktop
