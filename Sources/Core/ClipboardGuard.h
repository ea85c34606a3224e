#pragma once

#include "Platform/Input/Pasteboard.h"

#include <vector>

namespace lumarin {

// Keeps the user's clipboard while the program uses it: `save` before, `restore` after. The clipboard is for
// the program's use in between.
class ClipboardGuard {
public:
    // Copies all that is on the clipboard, in place of what was saved before.
    platform::Task<void> save();

    // Puts back what was saved, once; a clipboard that was empty, or not saved, is emptied.
    platform::Task<void> restore();

private:
    std::vector<platform::PasteboardItem> savedItems;
};

} // namespace lumarin
