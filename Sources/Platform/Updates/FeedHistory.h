#pragma once

#include "Platform/Foundation/UserDefaults.h"
#include "Platform/Updates/AppcastItem.h"

#include <vector>

namespace platform {

// What a feed was like when it was last read, so that an old copy of it is known for one. Any thread.
class FeedHistory {
public:
    FeedHistory(UserDefaults& keptIn, const std::string& feedAddress);

    // Throws UpdateError for a feed that has lost its signature or its newest version; remembers any other.
    void accept(bool isSigned, const std::vector<AppcastItem>& items);

private:
    UserDefaults& defaults;
    const std::string address;
    bool wasSigned = false;
    // Empty if the feed has listed nothing yet.
    std::string newestVersion;
    // What a person calls it.
    std::string newestName;
};

} // namespace platform
