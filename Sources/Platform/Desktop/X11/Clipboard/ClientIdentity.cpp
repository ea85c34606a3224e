#include "Platform/Desktop/X11/Clipboard/ClientIdentity.h"

#include <xcb/res.h>

namespace platform::desktop {

ClientIdentity::ClientIdentity(const XConnection& connection)
    : x(connection),
      idMask(xcb_get_setup(x)->resource_id_mask),
      canTellProcesses(xcb_get_extension_data(x, &xcb_res_id)->present != 0) {}

bool ClientIdentity::areOfOneProgram(xcb_window_t one, xcb_window_t other) const {
    if (one == XCB_NONE || other == XCB_NONE)
        return false;
    if (connectionOf(one) == connectionOf(other))
        return true;
    auto process = processOf(one);
    return process && process == processOf(other);
}

std::optional<std::uint32_t> ClientIdentity::processOf(xcb_window_t window) const {
    if (!canTellProcesses)
        return std::nullopt;
    const xcb_res_client_id_spec_t question{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    auto answer = x.reply(xcb_res_query_client_ids_reply, xcb_res_query_client_ids(x, 1, &question));
    if (!answer || answer->num_ids == 0)
        return std::nullopt;
    auto id = xcb_res_query_client_ids_ids_iterator(answer.get());
    if (xcb_res_client_id_value_value_length(id.data) < 1)
        return std::nullopt;
    return *xcb_res_client_id_value_value(id.data);
}

} // namespace platform::desktop
