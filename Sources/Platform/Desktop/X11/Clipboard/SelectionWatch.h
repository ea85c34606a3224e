#pragma once

#include "Platform/Desktop/X11/Clipboard/SelectionThread.h"

#include <optional>

namespace platform::desktop {

// A new owner of the clipboard, nobody being XCB_NONE: when it came, and the time it claims the clipboard
// from.
struct OwnerChange {
    xcb_window_t owner;
    xcb_timestamp_t time;
    xcb_timestamp_t since;
};

// Knows who owns the clipboard. The pasteboard's thread.
class SelectionWatch {
public:
    // Throws DisplayError where the server can't tell of new owners.
    explicit SelectionWatch(SelectionThread& thread);

    // Nobody: XCB_NONE.
    xcb_window_t owner() const { return owner_; }

    // How many there have been: an application that copies anew keeps its window.
    unsigned changes() const { return changes_; }

    // The change an event tells of.
    std::optional<OwnerChange> handle(const xcb_generic_event_t& event);

private:
    std::uint8_t changeEvent;
    xcb_window_t owner_;
    unsigned changes_ = 0;
};

} // namespace platform::desktop
