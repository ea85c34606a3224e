#pragma once

#include "Platform/Foundation/UserDefaults.h"

#include <string>

namespace platform {

// Throws UpdateError for a feed that was signed before one that was read at the same address earlier: it is
// an old copy. Remembers of any other when it was signed. Both moments as in 2026-11-16T18:35:58Z. Any
// thread.
void refuseOlderFeed(UserDefaults& keptIn, const std::string& address, const std::string& signedAt,
                     const std::string& now);

} // namespace platform
