#pragma once

#include "Platform/Desktop/X11/Server/XConnection.h"

namespace platform::desktop {

// Tells which windows belong together. The pasteboard's thread.
class ClientIdentity {
public:
    explicit ClientIdentity(const XConnection& connection);

    // The connection that made a window: the part of its number common to all that the connection made.
    std::uint32_t connectionOf(xcb_window_t window) const { return window & ~idMask; }

    // Whether two windows are of one program: of one connection, or of two connections of one process.
    bool areOfOneProgram(xcb_window_t one, xcb_window_t other) const;

private:
    std::optional<std::uint32_t> processOf(xcb_window_t window) const;

    const XConnection& x;
    std::uint32_t idMask;
    bool canTellProcesses;
};

} // namespace platform::desktop
