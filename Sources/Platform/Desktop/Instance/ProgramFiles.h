#pragma once

#include <filesystem>

// Where the program's own files are. Any thread.
namespace platform::desktop {

// The user's configuration of it.
std::filesystem::path configurationFolder();

// The program file itself, and what it comes with.
std::filesystem::path executableFile();
std::filesystem::path resourcesFolder();

// Loads one of the program's libraries, for good: threads of it may be running until the end. Null if it
// cannot be loaded.
void* loadLibrary(const char* fileName);

} // namespace platform::desktop
