#include "Platform/Desktop/Wayland/Display/LayerShell.h"

namespace platform::desktop {
namespace {

// The first in which changes are told in pixels of the picture.
constexpr std::uint32_t compositorVersion = 4;

} // namespace

bool LayerShell::isOffered(const WaylandConnection& wayland) {
    return wayland.offers(wl_compositor_interface) && wayland.offers(wl_shm_interface)
           && wayland.offers(zwlr_layer_shell_v1_interface);
}

LayerShell::LayerShell(const WaylandConnection& wayland)
    : connection(wayland),
      compositor(wayland.bind<wl_compositor>(wl_compositor_interface, compositorVersion)),
      memory(wayland.bind<wl_shm>(wl_shm_interface, 1)),
      shell(wayland.bind<zwlr_layer_shell_v1>(zwlr_layer_shell_v1_interface, 1)),
      viewporter(wayland.bind<wp_viewporter>(wp_viewporter_interface, 1)) {
    if (!compositor || !memory || !shell)
        throw WaylandError("The compositor shows nothing of Lumarin's above the windows.");
}

} // namespace platform::desktop
