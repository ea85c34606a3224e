#include "Platform/Desktop/Wayland/Server/WaylandConnection.h"

#include <algorithm>

#include <poll.h>
#include <unistd.h>

namespace platform::desktop {

WaylandConnection::WaylandConnection() : connection(wl_display_connect(nullptr)) {
    if (!connection)
        throw WaylandError("Lumarin cannot connect to a Wayland compositor.");
    registry.reset(wl_display_get_registry(display()));
    static constexpr wl_registry_listener listener{added, removed};
    wl_registry_add_listener(registry.get(), &listener, this);
    roundTrip();
}

WaylandConnection::~WaylandConnection() = default;

void WaylandConnection::added(void* self, wl_registry*, std::uint32_t number, const char* interface,
                              std::uint32_t version) {
    auto& connection = *static_cast<WaylandConnection*>(self);
    connection.globals.push_back({number, interface, version});
    for (const auto& watch : connection.watches)
        if (watch.interface == interface)
            watch.added(number);
}

void WaylandConnection::removed(void* self, wl_registry*, std::uint32_t number) {
    auto& connection = *static_cast<WaylandConnection*>(self);
    const auto* global = connection.find(number);
    if (!global)
        return;
    const auto interface = global->interface;
    std::erase_if(connection.globals,
                  [number](const Global& candidate) { return candidate.number == number; });
    for (const auto& watch : connection.watches)
        if (watch.interface == interface)
            watch.removed(number);
}

void WaylandConnection::watch(const wl_interface& interface, std::function<void(std::uint32_t)> added,
                              std::function<void(std::uint32_t)> removed) {
    watches.push_back({interface.name, std::move(added), std::move(removed)});
    for (const auto& global : globals)
        if (global.interface == interface.name)
            watches.back().added(global.number);
}

const WaylandConnection::Global* WaylandConnection::find(std::string_view interface) const {
    const auto found = std::ranges::find(globals, interface, &Global::interface);
    return found != globals.end() ? &*found : nullptr;
}

const WaylandConnection::Global* WaylandConnection::find(std::uint32_t number) const {
    const auto found = std::ranges::find(globals, number, &Global::number);
    return found != globals.end() ? &*found : nullptr;
}

void* WaylandConnection::bindGlobal(const Global& global, const wl_interface& interface,
                                    std::uint32_t version) const {
    return wl_registry_bind(registry.get(), global.number, &interface, std::min(version, global.version));
}

bool WaylandConnection::dispatch() const {
    // Others' reads may have left something in the queue.
    bool any = wl_display_dispatch_pending(display()) > 0;
    while (wl_display_prepare_read(display()) == 0) {
        pollfd arrivals{descriptor(), POLLIN, 0};
        if (poll(&arrivals, 1, 0) <= 0) {
            wl_display_cancel_read(display());
            break;
        }
        if (wl_display_read_events(display()) < 0)
            break;
        any = wl_display_dispatch_pending(display()) > 0 || any;
    }
    return any;
}

void endForLostCompositor() {
    static constexpr std::string_view sentence = "Lumarin: The connection to the compositor was lost.\n";
    [[maybe_unused]] auto written = write(STDERR_FILENO, sentence.data(), sentence.size());
    _exit(1);
}

} // namespace platform::desktop
