#pragma once

#include "Platform/Foundation/HTTPSession.h"
#include "Platform/Updates/AppcastItem.h"
#include "Platform/Updates/PublicKey.h"

#include <string>

namespace platform {

// Where updates come from and what they are measured against, as the bundle and the system say. Value.
struct UpdateSource {
    std::string feedURL;
    PublicKey publicKey;
    std::string runningVersion;
    // What a person calls it.
    std::string displayVersion;
    // Empty if the system has none.
    std::string systemVersion;

    // Those of the current host. Throws UpdateError where they are missing or make no sense. Main thread.
    static UpdateSource current();
};

// Reads the feed and gives the highest version above the running one that this system can run and that is
// properly signed. Throws UpdateError, which is a NoUpdate where all is well, or CancellationError.
Task<AppcastItem> findUpdate(UpdateSource source, std::shared_ptr<HTTPSession> session, std::string language);

} // namespace platform
