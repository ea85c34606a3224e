#pragma once

#include <optional>
#include <span>
#include <string>

namespace platform::desktop {

// How a terminal copies its selection to the clipboard and pastes from it.
enum class TerminalKeys {
    // Control+Insert and Control+Shift+Insert.
    insert,
    // Control+Shift+C and Control+Shift+V, where these are taken even if nothing is selected.
    shiftedLetter,
    // By no keys that could be sent without the risk of an interrupt.
    none,
};

// The keys of the terminal emulator whose window or program goes by one of the names; nothing if it is not
// known as one.
std::optional<TerminalKeys> terminalKeysOf(std::span<const std::string> names);

} // namespace platform::desktop
