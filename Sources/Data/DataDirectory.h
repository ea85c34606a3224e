#pragma once

#include <filesystem>

namespace lumarin {

// The folder of the program's own files.
std::filesystem::path dataDirectory();

// The same, after creating it if it is missing; whether that succeeds shows when a file in it is used.
std::filesystem::path createDataDirectory();

} // namespace lumarin
