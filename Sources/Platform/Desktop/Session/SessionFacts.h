#pragma once

#include "Platform/Foundation/Directories.h"

#include <filesystem>
#include <string>
#include <vector>

// What the environment says of the user's session. Read when asked; for the main thread.
namespace platform::desktop {

// The user's locales without encodings, the most preferred first and each followed by its bare language:
// "zh_CN", "zh". Empty in a session without languages.
std::vector<std::string> preferredLocales();

// The same as language tags: "zh-Hans-CN", "en-US". Never empty.
std::vector<std::string> preferredLanguageTags();

// The folders applications keep shared data in, the user's own first.
std::vector<std::filesystem::path> dataFolders();

Directories sessionDirectories();

} // namespace platform::desktop
