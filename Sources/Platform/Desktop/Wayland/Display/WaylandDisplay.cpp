#include "Platform/Desktop/Wayland/Display/WaylandDisplay.h"

#include <algorithm>
#include <cmath>

namespace platform::desktop {

WaylandDisplay::WaylandDisplay(std::function<std::optional<std::uint32_t>()> whichHasFocus)
    : focusedOutput(std::move(whichHasFocus)),
      outputs(wayland,
              [this] {
                  if (onChange)
                      onChange();
              }),
      seat(wayland.bind<wl_seat>(wl_seat_interface, 1)) {
    hearOfClicks();
}

std::vector<Monitor> WaylandDisplay::monitors() {
    std::vector<Monitor> result;
    for (const auto& output : outputs.all())
        result.push_back(monitorOf(output));
    return result;
}

// The compositor itself keeps what is shown off its panels.
Monitor WaylandDisplay::monitorOf(const Output& output) const {
    const double scale = shell.viewporter ? output.scale : std::ceil(output.scale);
    const Rect frame{double(output.frame.x()), -double(output.frame.y() + output.frame.height()),
                     double(output.frame.width()), double(output.frame.height())};
    const QRect pixels(output.frame.topLeft(), (QSizeF(output.frame.size()) * scale).toSize());
    const PixelGrid grid{{scale, scale}, {output.frame.x() * (1 - scale), output.frame.y() * (1 - scale)}};
    return {pixels, {frame, frame, scale}, grid};
}

const Monitor& WaylandDisplay::mainMonitor(const std::vector<Monitor>& monitors) {
    mainOutput = focusedOutput();
    const auto output = mainOutput ? outputs.find(*mainOutput) : std::nullopt;
    const auto found = std::ranges::find_if(monitors, [&](const Monitor& monitor) {
        return output && monitor.pixels.topLeft() == output->frame.topLeft();
    });
    return found != monitors.end() ? *found : monitors.front();
}

// Outputs of different scales overlap where they are counted in pixels; what is shown is on the main one.
std::optional<LayerSurface::Ground> WaylandDisplay::groundAt(const QRect& place) const {
    std::optional<LayerSurface::Ground> result;
    for (const auto& output : outputs.all()) {
        const auto monitor = monitorOf(output);
        const bool isMain = output.number == mainOutput;
        if (monitor.pixels.contains(place.center()) && (!result || isMain))
            result = LayerSurface::Ground{output.handle, output.number, monitor.pixels, monitor.screen.scale};
    }
    return result;
}

std::unique_ptr<Surface> WaylandDisplay::makeSurface(int /*margin*/) {
    return std::make_unique<LayerSurface>(shell, [this](const QRect& place) { return groundAt(place); });
}

// Surfaces take clicks where something is to be seen, and nothing else of this connection's is ever entered.
void WaylandDisplay::hearOfClicks() {
    if (!seat)
        return;
    static constexpr wl_seat_listener listener{
        .capabilities =
            [](void* self, wl_seat* told, std::uint32_t capabilities) {
                auto& display = *static_cast<WaylandDisplay*>(self);
                if ((capabilities & WL_SEAT_CAPABILITY_POINTER) != 0 && !display.pointer) {
                    display.pointer.reset(wl_seat_get_pointer(told));
                    wl_pointer_add_listener(display.pointer.get(), &pointerListener, self);
                }
                if ((capabilities & WL_SEAT_CAPABILITY_TOUCH) != 0 && !display.touch) {
                    display.touch.reset(wl_seat_get_touch(told));
                    wl_touch_add_listener(display.touch.get(), &touchListener, self);
                }
            },
        .name = [](void*, wl_seat*, const char*) {}};
    wl_seat_add_listener(seat.get(), &listener, this);
}

// Events of later versions of the two protocols than are bound do not come.
const wl_pointer_listener WaylandDisplay::pointerListener = [] {
    wl_pointer_listener listener{};
    listener.enter = [](void*, wl_pointer*, std::uint32_t, wl_surface*, wl_fixed_t, wl_fixed_t) {};
    listener.leave = [](void*, wl_pointer*, std::uint32_t, wl_surface*) {};
    listener.motion = [](void*, wl_pointer*, std::uint32_t, wl_fixed_t, wl_fixed_t) {};
    listener.button = [](void* self, wl_pointer*, std::uint32_t, std::uint32_t, std::uint32_t,
                         std::uint32_t state) {
        if (state == WL_POINTER_BUTTON_STATE_PRESSED)
            static_cast<WaylandDisplay*>(self)->clicked();
    };
    listener.axis = [](void*, wl_pointer*, std::uint32_t, std::uint32_t, wl_fixed_t) {};
    return listener;
}();

const wl_touch_listener WaylandDisplay::touchListener = [] {
    wl_touch_listener listener{};
    listener.down = [](void* self, wl_touch*, std::uint32_t, std::uint32_t, wl_surface*, std::int32_t,
                       wl_fixed_t, wl_fixed_t) { static_cast<WaylandDisplay*>(self)->clicked(); };
    listener.up = [](void*, wl_touch*, std::uint32_t, std::uint32_t, std::int32_t) {};
    listener.motion = [](void*, wl_touch*, std::uint32_t, std::int32_t, wl_fixed_t, wl_fixed_t) {};
    listener.frame = [](void*, wl_touch*) {};
    listener.cancel = [](void*, wl_touch*) {};
    return listener;
}();

void WaylandDisplay::clicked() const {
    if (onClick)
        onClick();
}

} // namespace platform::desktop
