#include "Platform/Desktop/Windows/DesktopWindowServer.h"

#include "Platform/Desktop/Windows/FrameTime.h"
#include "Platform/Kit/Window.h"

#include <algorithm>
#include <utility>

namespace platform::desktop {
namespace {

// The monitor on which a window has its middle.
const Monitor* monitorUnder(const Window& window, const std::vector<Monitor>& monitors) {
    const auto frame = window.frame();
    const auto found = std::ranges::find_if(monitors, [&](const Monitor& monitor) {
        return monitor.screen.frame.contains({frame.midX(), frame.midY()});
    });
    return found != monitors.end() ? &*found : nullptr;
}

} // namespace

DesktopWindowServer::DesktopWindowServer(Display& shownOn, const RunLoop& runLoop, const Bundle& bundle)
    : display(shownOn), clock(runLoop), drawings(bundle) {
    display.onChange = [this] { displayChanged(); };
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, [this] { drawFrame(); });
}

DesktopWindowServer::~DesktopWindowServer() {
    display.onChange = nullptr;
}

std::optional<Screen> DesktopWindowServer::mainScreen() {
    for (const auto& [window, surface] : shown)
        // One that fades out is not looked at any more.
        if (const auto* monitor = monitorUnder(*window, monitors); monitor && window->alphaValue() > 0)
            return monitor->screen;
    monitors = display.monitors();
    if (monitors.empty())
        return std::nullopt;
    return display.mainMonitor(monitors).screen;
}

void DesktopWindowServer::orderFront(Window& window) {
    if (monitors.empty())
        monitors = display.monitors();
    if (contains(window.styleMask, Window::StyleMask::titled)) {
        auto& frame = titled[&window];
        if (!frame)
            frame.reset(new TitledWindow(window, clock, drawings, monitorOf(window)));
        frame->raise();
        return;
    }
    backdrop = display.backdrop();
    const auto place = shown.try_emplace(&window, display, window, gridFor(window).scale.width).first;
    requestFrame(place->second);
}

void DesktopWindowServer::orderOut(Window& window) {
    if (titled.erase(&window))
        return;
    shown.erase(&window);
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

void DesktopWindowServer::displayChanged() {
    backdrop = display.backdrop();
    const auto before = std::exchange(monitors, display.monitors());
    leaveMonitorsThatWent(before);
    for (auto& [window, surface] : shown)
        requestFrame(surface);
}

// To the same place on the main monitor.
void DesktopWindowServer::leaveMonitorsThatWent(const std::vector<Monitor>& before) {
    if (monitors.empty())
        return;
    for (auto& [window, surface] : shown) {
        const auto* left = monitorUnder(*window, before);
        if (!left || monitorUnder(*window, monitors))
            continue;
        const auto& from = left->screen.visibleFrame;
        const auto& to = display.mainMonitor(monitors).screen.visibleFrame;
        const auto frame = window->frame();
        window->setFrameOrigin({to.midX() + frame.x - from.midX(), to.maxY() + frame.y - from.maxY()});
    }
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
    for (const auto& [window, surface] : shown)
        if (surface.due && (!next || *surface.due < *next))
            next = surface.due;
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
    for (auto& [window, surface] : shown) {
        if (!surface.due || *surface.due > soon)
            continue;
        surface.draw(now, gridFor(*window), backdrop);
        surface.due = window->nextChange(now);
        if (surface.due)
            surface.due = std::max(*surface.due, lastFrame + frameTime);
    }
    scheduleFrame();
}

const Monitor* DesktopWindowServer::monitorOf(const Window& window) const {
    if (monitors.empty())
        return nullptr;
    const auto* under = monitorUnder(window, monitors);
    return under ? under : &monitors.front();
}

PixelGrid DesktopWindowServer::gridFor(const Window& window) const {
    const auto* monitor = monitorOf(window);
    return monitor ? monitor->grid : PixelGrid();
}

} // namespace platform::desktop
