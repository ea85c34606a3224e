#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

struct xkb_keymap;

namespace platform::desktop {

// As X11 counts: eight more than the kernel.
using KeyCode = std::uint8_t;

// Which key of the keyboard types what, as it was at one moment. Never changes; any thread.
class KeyMap {
public:
    // Takes over the caller's reference.
    explicit KeyMap(xkb_keymap* keymap);

    // The key that stands for Fn: the one with that name, or else Right Control.
    std::optional<KeyCode> functionKey() const { return functionKey_; }

    // The key that types the layer's virtual key in a group or, where none does, in another one: applications
    // look there too.
    std::optional<KeyCode> keyFor(int virtualKey, std::uint32_t group) const;

    // The first group in which a key types the layer's virtual key.
    std::optional<std::uint32_t> groupTyping(int virtualKey) const;

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
    std::optional<KeyCode> keyTyping(std::uint32_t symbol, std::optional<std::uint32_t> group) const;
    std::optional<KeyCode> keyNamed(const char* name) const;

    struct Release {
        void operator()(xkb_keymap* owned) const noexcept;
    };
    std::unique_ptr<xkb_keymap, Release> map;
    std::optional<KeyCode> functionKey_;
    std::optional<KeyCode> controlKey_;
    std::optional<KeyCode> shiftKey_;
    std::optional<KeyCode> insertKey_;
    std::optional<KeyCode> endKey_;
    std::vector<KeyCode> modifierKeys_;
};

} // namespace platform::desktop
