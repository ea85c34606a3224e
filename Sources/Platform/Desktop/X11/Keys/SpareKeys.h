#pragma once

#include "Platform/Desktop/Typing/KeyMap.h"
#include "Platform/Desktop/X11/Server/XConnection.h"

#include <map>

namespace platform::desktop {

// Keys that no keyboard has, for the letters of combinations that the keyboard's map does not type in any of
// its layouts: applications do not know Control+C by the place of the C. One thread.
class SpareKeys {
public:
    explicit SpareKeys(const XConnection& connection) : x(connection) {}
    // Takes the keys back.
    ~SpareKeys();
    SpareKeys(const SpareKeys&) = delete;
    SpareKeys& operator=(const SpareKeys&) = delete;

    // Whether it changed the server's map, so that it types all that is needed.
    bool provide(const KeyMap& map);

private:
    bool assign(KeyCode code, std::uint32_t symbol) const;

    const XConnection& x;
    std::map<KeyCode, std::uint32_t> assigned;
};

} // namespace platform::desktop
