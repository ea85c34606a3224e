#pragma once

#include <cstddef>
#include <string>

namespace platform {

// A version that an update feed lists. Value; what the feed does not say is empty.
struct AppcastItem {
    // What versions are compared by, and what a person calls it.
    std::string versionString;
    std::string displayVersionString;
    // Plain text in a few lines, and where there is more to read.
    std::string releaseNotes;
    std::string releaseNotesURL;

    // The package: its address, its length in bytes and the signature of its bytes, none if it is not one.
    std::string fileURL;
    std::size_t contentLength = 0;
    std::string signature;

    std::string minimumSystemVersion;
    std::string maximumSystemVersion;
};

} // namespace platform
