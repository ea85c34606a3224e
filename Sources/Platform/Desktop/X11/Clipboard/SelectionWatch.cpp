#include "Platform/Desktop/X11/Clipboard/SelectionWatch.h"

#include <xcb/xfixes.h>

namespace platform::desktop {

SelectionWatch::SelectionWatch(SelectionThread& thread) {
    const auto& x = thread.x();
    const auto* extension = xcb_get_extension_data(x, &xcb_xfixes_id);
    if (!extension->present || !x.reply(xcb_xfixes_query_version_reply, xcb_xfixes_query_version(x, 1, 0)))
        throw DisplayError("The X server lacks the XFIXES extension.");
    changeEvent = static_cast<std::uint8_t>(extension->first_event + XCB_XFIXES_SELECTION_NOTIFY);

    auto clipboard = x.atom("CLIPBOARD");
    xcb_xfixes_select_selection_input(x, x.root(), clipboard,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER
                                          | XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY
                                          | XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    auto present = x.reply(xcb_get_selection_owner_reply, xcb_get_selection_owner(x, clipboard));
    owner_ = present ? present->owner : XCB_NONE;
}

std::optional<OwnerChange> SelectionWatch::handle(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7F) != changeEvent)
        return std::nullopt;
    const auto& change = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
    // Where the owner went away, the event still names it.
    owner_ = change.subtype == XCB_XFIXES_SELECTION_EVENT_SET_SELECTION_OWNER ? change.owner : XCB_NONE;
    ++changes_;
    return OwnerChange{owner_, change.timestamp, change.selection_timestamp};
}

} // namespace platform::desktop
