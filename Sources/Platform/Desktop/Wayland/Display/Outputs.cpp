#include "Platform/Desktop/Wayland/Display/Outputs.h"

#include <algorithm>

namespace platform::desktop {

Outputs::Outputs(WaylandConnection& compositor, std::function<void()> changed)
    : wayland(compositor),
      report(std::move(changed)),
      manager(wayland.bind<zxdg_output_manager_v1>(zxdg_output_manager_v1_interface, 3)) {
    wayland.watch(
        wl_output_interface, [this](std::uint32_t number) { add(number); },
        [this](std::uint32_t number) {
            entries.erase(number);
            report();
        });
    wayland.roundTrip();
    wayland.roundTrip();
}

Outputs::~Outputs() = default;

void Outputs::add(std::uint32_t number) {
    auto& entry = entries[number];
    entry.owner = this;
    // Its second version tells when all has been told.
    entry.output.reset(wayland.bindNumbered<wl_output>(number, wl_output_interface, 2));
    static constexpr wl_output_listener listener{
        .geometry =
            [](void* told, wl_output*, std::int32_t x, std::int32_t y, std::int32_t, std::int32_t,
               std::int32_t, const char*, const char*, std::int32_t transform) {
                auto& output = *static_cast<Entry*>(told);
                output.place = {x, y};
                output.isTurned = (transform & WL_OUTPUT_TRANSFORM_90) != 0;
            },
        .mode =
            [](void* told, wl_output*, std::uint32_t flags, std::int32_t width, std::int32_t height,
               std::int32_t) {
                if ((flags & WL_OUTPUT_MODE_CURRENT) != 0)
                    static_cast<Entry*>(told)->pixels = {width, height};
            },
        .done =
            [](void* told, wl_output*) {
                auto& output = *static_cast<Entry*>(told);
                output.isComplete = true;
                output.owner->report();
            },
        .scale = [](void* told, wl_output*,
                    std::int32_t factor) { static_cast<Entry*>(told)->wholeScale = factor; },
        .name = [](void*, wl_output*, const char*) {},
        .description = [](void*, wl_output*, const char*) {}};
    wl_output_add_listener(entry.output.get(), &listener, &entry);
    if (!manager)
        return;
    entry.extended.reset(zxdg_output_manager_v1_get_xdg_output(manager.get(), entry.output.get()));
    static constexpr zxdg_output_v1_listener extendedListener{
        .logical_position = [](void* told, zxdg_output_v1*, std::int32_t x,
                               std::int32_t y) { static_cast<Entry*>(told)->logical.moveTo(x, y); },
        .logical_size =
            [](void* told, zxdg_output_v1*, std::int32_t width, std::int32_t height) {
                static_cast<Entry*>(told)->logical.setSize({width, height});
            },
        .done = [](void*, zxdg_output_v1*) {},
        .name = [](void*, zxdg_output_v1*, const char*) {},
        .description = [](void*, zxdg_output_v1*, const char*) {}};
    zxdg_output_v1_add_listener(entry.extended.get(), &extendedListener, &entry);
}

std::vector<Output> Outputs::all() const {
    std::vector<Output> result;
    for (const auto& [number, entry] : entries) {
        if (!entry.isComplete || entry.pixels.isEmpty())
            continue;
        const auto pixels = entry.isTurned ? entry.pixels.transposed() : entry.pixels;
        // The compositor's own word on the scale is whole, also where the scale is not.
        const auto frame =
            !entry.logical.isEmpty() ? entry.logical : QRect(entry.place, pixels / entry.wholeScale);
        result.push_back({number, entry.output.get(), frame, double(pixels.width()) / frame.width()});
    }
    std::ranges::sort(result, {},
                      [](const Output& output) { return std::pair(output.frame.x(), output.frame.y()); });
    return result;
}

std::optional<Output> Outputs::find(std::uint32_t number) const {
    for (const auto& output : all())
        if (output.number == number)
            return output;
    return std::nullopt;
}

} // namespace platform::desktop
