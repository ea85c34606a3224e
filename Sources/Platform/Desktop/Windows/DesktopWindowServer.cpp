#include "Platform/Desktop/Windows/DesktopWindowServer.h"

#include "Platform/Kit/Window.h"

#include <algorithm>

#include <xcb/xfixes.h>

namespace platform::desktop {
namespace {

constexpr Duration frameTime = std::chrono::duration_cast<Duration>(std::chrono::duration<double>(1.0 / 60));

bool contains(const Rect& rect, const Point& point) {
    return point.x >= rect.x && point.x < rect.maxX() && point.y >= rect.y && point.y < rect.maxY();
}

} // namespace

DesktopWindowServer::DesktopWindowServer(const RunLoop& runLoop, const Bundle& bundle)
    : clock(runLoop),
      drawings(bundle),
      compositor(x,
                 [this] {
                     backdrop = compositor.backdrop();
                     drawAllAnew();
                 }),
      stacking(x, [this] {
          for (const auto& [window, display] : shown)
              display.raise();
      }) {
    // The server refuses requests of a version that was not agreed on.
    x.reply(xcb_xfixes_query_version_reply, xcb_xfixes_query_version(x, 2, 0));
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, [this] { drawFrame(); });
}

std::optional<Screen> DesktopWindowServer::mainScreen() {
    monitors = monitorsOf(x);
    if (monitors.empty())
        return std::nullopt;
    return mainMonitor(x, monitors).screen;
}

void DesktopWindowServer::orderFront(Window& window) {
    monitors = monitorsOf(x);
    if (contains(window.styleMask, Window::StyleMask::titled)) {
        auto& frame = titled[&window];
        if (!frame)
            frame.reset(new TitledWindow(window, clock, drawings, monitorOf(window)));
        frame->raise();
        return;
    }
    backdrop = compositor.backdrop();
    const auto place = shown.try_emplace(&window, x, window, gridFor(window).scale.width).first;
    requestFrame(place->second);
    stacking.setWatching(true);
}

void DesktopWindowServer::orderOut(Window& window) {
    if (titled.erase(&window))
        return;
    shown.erase(&window);
    stacking.setWatching(!shown.empty());
    scheduleFrame();
}

void DesktopWindowServer::makeKey(Window& window) {
    if (const auto found = titled.find(&window); found != titled.end())
        found->second->activateWindow();
}

void DesktopWindowServer::setNeedsDisplay(Window& window) {
    if (const auto found = titled.find(&window); found != titled.end())
        found->second->requestFrame();
    if (const auto found = shown.find(&window); found != shown.end())
        requestFrame(found->second);
}

void DesktopWindowServer::drawAllAnew() {
    for (auto& [window, display] : shown)
        requestFrame(display);
}

void DesktopWindowServer::requestFrame(ShownWindow& window) {
    const auto next = std::max(clock.now(), lastFrame + frameTime);
    if (window.due && *window.due <= next)
        return;
    window.due = next;
    scheduleFrame();
}

void DesktopWindowServer::scheduleFrame() {
    std::optional<Duration> next;
    for (const auto& [window, display] : shown)
        if (display.due && (!next || *display.due < *next))
            next = display.due;
    if (!next)
        timer.stop();
    else
        timer.start(
            std::chrono::round<std::chrono::milliseconds>(std::max(*next - clock.now(), Duration::zero())));
}

void DesktopWindowServer::drawFrame() {
    const auto now = clock.now();
    // The timer may be early by a part of its millisecond.
    const auto soon = now + std::chrono::milliseconds(1);
    // Frames keep their distance although the timer is some way off each time.
    lastFrame += frameTime;
    if (now < lastFrame || now > lastFrame + frameTime / 2)
        lastFrame = now;
    for (auto& [window, display] : shown) {
        if (!display.due || *display.due > soon)
            continue;
        display.draw(now, gridFor(*window), backdrop);
        display.due = window->nextChange(now);
        if (display.due)
            display.due = std::max(*display.due, lastFrame + frameTime);
    }
    scheduleFrame();
}

const Monitor* DesktopWindowServer::monitorOf(const Window& window) const {
    if (monitors.empty())
        return nullptr;
    const auto frame = window.frame();
    const auto found = std::ranges::find_if(monitors, [&](const Monitor& monitor) {
        return contains(monitor.screen.frame, {frame.midX(), frame.midY()});
    });
    return found != monitors.end() ? &*found : &monitors.front();
}

PixelGrid DesktopWindowServer::gridFor(const Window& window) const {
    if (const auto* monitor = monitorOf(window))
        return monitor->grid;
    return {{1, 1}, {0, double(x.screen().height_in_pixels)}};
}

} // namespace platform::desktop
