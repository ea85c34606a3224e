#pragma once

#include "Platform/Desktop/Wayland/Server/WaylandConnection.h"

namespace platform::desktop {

// What surfaces above all windows are made with. Main thread; outlives them.
struct LayerShell {
    static bool isOffered(const WaylandConnection& wayland);

    explicit LayerShell(const WaylandConnection& wayland);

    const WaylandConnection& connection;
    const WaylandOwned<wl_compositor> compositor;
    const WaylandOwned<wl_shm> memory;
    const WaylandOwned<zwlr_layer_shell_v1> shell;
    // Null where pictures can be scaled by whole numbers alone.
    const WaylandOwned<wp_viewporter> viewporter;
};

} // namespace platform::desktop
