#pragma once

#include "Platform/Desktop/X11/Server/XConnection.h"

#include <memory>
#include <optional>
#include <vector>

struct xkb_keymap;

namespace platform::desktop {

using KeyCode = xcb_keycode_t;

// Which key of the keyboard types what, as the server had it at one moment. Never changes; any thread.
class KeyMap {
public:
    // Nothing if the server cannot tell. The connection outlives the map, and is not one that waits for
    // events: once it has asked for a map it no longer hears of new ones.
    static std::shared_ptr<const KeyMap> read(const XConnection& x);

    // The key that stands for Fn: the one with that name, or else Right Control.
    std::optional<KeyCode> functionKey() const { return functionKey_; }

    // The group (the layout) that is chosen at this moment.
    std::uint32_t currentGroup() const;

    // The key that types the layer's virtual key in a group or, where none does, in another one: applications
    // look there too.
    std::optional<KeyCode> keyFor(int virtualKey, std::uint32_t group) const;

    // Whether the key types the symbol in its first group.
    bool types(KeyCode code, std::uint32_t symbol) const;

    // What no key types in any group, of all that the layer's virtual keys stand for.
    std::vector<std::uint32_t> missingSymbols() const;

    // The codes of keys that type nothing.
    std::vector<KeyCode> unusedKeys() const;

    // The layer's virtual key of a key, in whichever group it has one.
    std::optional<int> virtualKeyOf(KeyCode code) const;

    std::optional<KeyCode> controlKey() const { return controlKey_; }
    std::optional<KeyCode> shiftKey() const { return shiftKey_; }
    std::optional<KeyCode> insertKey() const { return insertKey_; }
    std::optional<KeyCode> endKey() const { return endKey_; }

    // The keys that change what other keys mean while they are held.
    const std::vector<KeyCode>& modifierKeys() const { return modifierKeys_; }

private:
    KeyMap(xkb_keymap* read, const XConnection& connection, std::int32_t keyboard);

    std::optional<KeyCode> keyTyping(std::uint32_t symbol, std::optional<std::uint32_t> group) const;
    std::optional<KeyCode> keyNamed(const char* name) const;

    struct Release {
        void operator()(xkb_keymap* owned) const noexcept;
    };
    std::unique_ptr<xkb_keymap, Release> map;
    const XConnection& x;
    std::int32_t device;
    std::optional<KeyCode> functionKey_;
    std::optional<KeyCode> controlKey_;
    std::optional<KeyCode> shiftKey_;
    std::optional<KeyCode> insertKey_;
    std::optional<KeyCode> endKey_;
    std::vector<KeyCode> modifierKeys_;
};

} // namespace platform::desktop
