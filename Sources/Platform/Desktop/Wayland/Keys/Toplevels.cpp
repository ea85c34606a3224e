#include "Platform/Desktop/Wayland/Keys/Toplevels.h"

#include <algorithm>

namespace platform::desktop {

Toplevels::Toplevels(CompositorThread& compositorThread)
    : thread(compositorThread), seat(thread.connection().bind<wl_seat>(wl_seat_interface, 1)) {
    // A window's output is told by an object that was bound here.
    thread.connection().watch(
        wl_output_interface,
        [this](std::uint32_t number) {
            outputs[number].reset(
                thread.connection().bindNumbered<wl_output>(number, wl_output_interface, 1));
        },
        [this](std::uint32_t number) { outputs.erase(number); });
    manager.reset(thread.connection().bind<zwlr_foreign_toplevel_manager_v1>(
        zwlr_foreign_toplevel_manager_v1_interface, 2));
    if (!manager)
        return;
    static constexpr zwlr_foreign_toplevel_manager_v1_listener listener{
        [](void* self, zwlr_foreign_toplevel_manager_v1*, Handle* handle) {
            static_cast<Toplevels*>(self)->add(handle);
        },
        [](void*, zwlr_foreign_toplevel_manager_v1*) {}};
    zwlr_foreign_toplevel_manager_v1_add_listener(manager.get(), &listener, this);
    thread.connection().roundTrip();
    thread.connection().roundTrip();
}

Toplevels::~Toplevels() = default;

void Toplevels::add(Handle* handle) {
    {
        std::lock_guard lock(mutex);
        auto& entry = entries[handle];
        entry.handle.reset(handle);
        entry.pending.number = ++numbers;
    }
    static constexpr zwlr_foreign_toplevel_handle_v1_listener listener{
        .title = [](void*, Handle*, const char*) {},
        .app_id =
            [](void* self, Handle* told, const char* name) {
                static_cast<Toplevels*>(self)->entryOf(told).pending.application = name;
            },
        .output_enter =
            [](void* self, Handle* told, wl_output* entered) {
                auto& toplevels = *static_cast<Toplevels*>(self);
                for (const auto& [number, output] : toplevels.outputs)
                    if (output.get() == entered)
                        toplevels.entryOf(told).pending.output = number;
            },
        .output_leave = [](void*, Handle*, wl_output*) {},
        .state =
            [](void* self, Handle* told, wl_array* states) {
                const auto* first = static_cast<const std::uint32_t*>(states->data);
                const auto count = static_cast<std::ptrdiff_t>(states->size / sizeof *first);
                static_cast<Toplevels*>(self)->entryOf(told).pending.isActivated =
                    std::count(first, first + count, ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_ACTIVATED) != 0;
            },
        .done =
            [](void* self, Handle* told) {
                auto& toplevels = *static_cast<Toplevels*>(self);
                auto& entry = toplevels.entryOf(told);
                std::lock_guard lock(toplevels.mutex);
                entry.told = entry.pending;
            },
        .closed =
            [](void* self, Handle* told) {
                auto& toplevels = *static_cast<Toplevels*>(self);
                std::lock_guard lock(toplevels.mutex);
                toplevels.entries.erase(told);
            },
        .parent = [](void*, Handle*, Handle*) {}};
    zwlr_foreign_toplevel_handle_v1_add_listener(handle, &listener, this);
}

Toplevels::Entry& Toplevels::entryOf(Handle* handle) {
    return entries.at(handle);
}

std::optional<Toplevel> Toplevels::front() const {
    std::lock_guard lock(mutex);
    const auto found =
        std::ranges::find_if(entries, [](const auto& entry) { return entry.second.told.isActivated; });
    return found != entries.end() ? std::optional(found->second.told) : std::nullopt;
}

std::optional<Toplevel> Toplevels::find(std::uint32_t number) const {
    std::lock_guard lock(mutex);
    const auto found = std::ranges::find_if(
        entries, [number](const auto& entry) { return entry.second.told.number == number; });
    return found != entries.end() ? std::optional(found->second.told) : std::nullopt;
}

void Toplevels::activate(std::uint32_t number) {
    thread.post([this, number] {
        for (const auto& [handle, entry] : entries)
            if (entry.told.number == number)
                zwlr_foreign_toplevel_handle_v1_activate(handle, seat.get());
    });
}

} // namespace platform::desktop
