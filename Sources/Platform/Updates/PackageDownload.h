#pragma once

#include "Platform/Foundation/HTTPSession.h"
#include "Platform/Foundation/IncomingFile.h"
#include "Platform/Updates/AppcastItem.h"
#include "Platform/Updates/PublicKey.h"

#include <functional>

namespace platform {

inline constexpr std::size_t maximumPackageLength = std::size_t{1} << 30U;

// The name of the package's file: the last part of its address, as far as a file may be called that.
std::string packageFileName(const AppcastItem& item);

// Fetches the package into `file`, and throws UpdateError unless it has the length and the signature that the
// item gives it. `onProgress` is told on the main thread how much of it is there, from 0 to 1. Throws
// CancellationError or std::system_error as well.
Task<void> downloadPackage(AppcastItem item, PublicKey key, std::shared_ptr<HTTPSession> session,
                           std::shared_ptr<IncomingFile> file, std::function<void(double)> onProgress);

} // namespace platform
