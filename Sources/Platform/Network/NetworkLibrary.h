#pragma once

#include "Platform/Foundation/HTTPSession.h"

#include <filesystem>

namespace platform {

// What the library is loaded from, beside the program or in ../lib/lumarin/plugins, and what it gives:
// CurlSessions.
constexpr const char* networkLibraryFile = "LumarinNetwork.so";
constexpr const char* sessionMakerName = "makeLumarinHTTPSession";
using SessionMaker = std::shared_ptr<HTTPSession>(HTTPSessionConfiguration,
                                                  const std::optional<std::filesystem::path>& authority);

} // namespace platform
