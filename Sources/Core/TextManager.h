#pragma once

#include "Core/ClipboardGuard.h"
#include "Core/TextManagerError.h"
#include "Platform/Foundation/Task.h"
#include "Platform/Input/KeyEvent.h"

#include <cstdint>
#include <string>

namespace lumarin {

// Reads and replaces the text of whatever field has the keyboard, knowing nothing of the field: it types on
// the user's behalf and moves the text through the clipboard, which is afterwards what it was before. One
// operation at a time; both work off the main thread.
class TextManager {
public:
    // The selected text or, where nothing is selected, all of it; never empty. Throws TextManagerError, or
    // CancellationError.
    platform::Task<std::string> readCurrentText();

    // Puts `text` in the place of what was last read. Whether the field took it cannot be known.
    platform::Task<void> writeText(std::string text);

private:
    enum class KeyCode { a = platform::key::a, c = platform::key::c, v = platform::key::v };

    platform::Task<std::string> copyFocusedText();
    platform::Task<std::string> copyAttempt();
    platform::Task<void> pasteOver(std::string text);
    // Throws `unsaved` before the clipboard is touched where its contents cannot be had.
    template <typename Work>
    platform::Task<void> keepingClipboard(TextManagerError::Case unsaved, Work work);

    platform::Task<void> simulateKeyCombo(KeyCode key, std::uint64_t flags);

    ClipboardGuard clipboardGuard;
    // The read found a selection, so the write replaces only that.
    bool wasPartialSelection = false;
};

} // namespace lumarin
