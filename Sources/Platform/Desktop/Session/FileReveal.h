#pragma once

#include <filesystem>

// For the main thread.
namespace platform::desktop {

// Asks the desktop's file manager to show the file selected in its folder, or to open the folder where it
// can't. Returns at once.
void revealFile(const std::filesystem::path& file);

} // namespace platform::desktop
