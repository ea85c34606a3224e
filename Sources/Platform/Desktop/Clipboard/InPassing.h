#pragma once

#include "Platform/Desktop/Clipboard/SelectionContent.h"

namespace platform::desktop {

// What is on the clipboard in passing asks clipboard managers to stay out of their histories, and by being
// there at all keeps those that never leave a clipboard empty from filling it in the midst of a gesture.
inline const SelectionForm inPassing{"x-kde-passwordManagerHint", "x-kde-passwordManagerHint", 8, "secret"};

} // namespace platform::desktop
