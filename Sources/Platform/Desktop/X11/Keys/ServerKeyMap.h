#pragma once

#include "Platform/Desktop/Typing/KeyMap.h"
#include "Platform/Desktop/X11/Server/XConnection.h"

namespace platform::desktop {

// The keyboard's map as the server has it now; nothing if it cannot tell. The connection is not one that
// waits for events: once it has asked for a map it no longer hears of new ones. One thread at a time.
std::shared_ptr<const KeyMap> readKeyMap(const XConnection& x);

// The group (the layout) that is chosen at this moment. Any thread.
std::uint32_t currentGroup(const XConnection& x);

} // namespace platform::desktop
