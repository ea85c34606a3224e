#pragma once

#include <memory>

#include <viewporter-client-protocol.h>
#include <virtual-keyboard-unstable-v1-client-protocol.h>
#include <wayland-client.h>
#include <wlr-data-control-unstable-v1-client-protocol.h>
#include <wlr-foreign-toplevel-management-unstable-v1-client-protocol.h>
#include <wlr-layer-shell-unstable-v1-client-protocol.h>
#include <xdg-output-unstable-v1-client-protocol.h>

namespace platform::desktop {

// Gives back what libwayland hands out. (Generated functions can't be template arguments here: each file has
// its own.)
struct ReleaseWayland {
    void operator()(wl_display* it) const { wl_display_disconnect(it); }
    void operator()(wl_registry* it) const { wl_registry_destroy(it); }
    void operator()(wl_callback* it) const { wl_callback_destroy(it); }
    void operator()(wl_seat* it) const { wl_seat_destroy(it); }
    void operator()(wl_keyboard* it) const { wl_keyboard_destroy(it); }
    void operator()(wl_pointer* it) const { wl_pointer_destroy(it); }
    void operator()(wl_touch* it) const { wl_touch_destroy(it); }
    void operator()(wl_output* it) const { wl_output_destroy(it); }
    void operator()(wl_compositor* it) const { wl_compositor_destroy(it); }
    void operator()(wl_surface* it) const { wl_surface_destroy(it); }
    void operator()(wl_region* it) const { wl_region_destroy(it); }
    void operator()(wl_shm* it) const { wl_shm_destroy(it); }
    void operator()(wl_buffer* it) const { wl_buffer_destroy(it); }
    void operator()(wp_viewporter* it) const { wp_viewporter_destroy(it); }
    void operator()(wp_viewport* it) const { wp_viewport_destroy(it); }
    void operator()(zxdg_output_manager_v1* it) const { zxdg_output_manager_v1_destroy(it); }
    void operator()(zxdg_output_v1* it) const { zxdg_output_v1_destroy(it); }
    void operator()(zwlr_layer_shell_v1* it) const { zwlr_layer_shell_v1_destroy(it); }
    void operator()(zwlr_layer_surface_v1* it) const { zwlr_layer_surface_v1_destroy(it); }
    void operator()(zwp_virtual_keyboard_manager_v1* it) const {
        zwp_virtual_keyboard_manager_v1_destroy(it);
    }
    void operator()(zwp_virtual_keyboard_v1* it) const { zwp_virtual_keyboard_v1_destroy(it); }
    void operator()(zwlr_foreign_toplevel_manager_v1* it) const {
        zwlr_foreign_toplevel_manager_v1_destroy(it);
    }
    void operator()(zwlr_foreign_toplevel_handle_v1* it) const {
        zwlr_foreign_toplevel_handle_v1_destroy(it);
    }
    void operator()(zwlr_data_control_manager_v1* it) const { zwlr_data_control_manager_v1_destroy(it); }
    void operator()(zwlr_data_control_device_v1* it) const { zwlr_data_control_device_v1_destroy(it); }
    void operator()(zwlr_data_control_source_v1* it) const { zwlr_data_control_source_v1_destroy(it); }
    void operator()(zwlr_data_control_offer_v1* it) const { zwlr_data_control_offer_v1_destroy(it); }
};

template <typename T>
using WaylandOwned = std::unique_ptr<T, ReleaseWayland>;

} // namespace platform::desktop
