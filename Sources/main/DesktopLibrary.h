#pragma once

namespace platform::desktop {
class SingleInstance;
}

namespace lumarin {

// The library with all of the program, and what it hands out: runs until the program ends, with its status.
// Both arguments outlive that.
inline constexpr const char* desktopLibraryFile = "LumarinDesktop.so";
inline constexpr const char* runnerName = "runLumarin";
using Runner = int(char* program, const platform::desktop::SingleInstance& place);

} // namespace lumarin
