#pragma once

#include "Platform/Updates/AppcastItem.h"

namespace platform {

// Is told what a check for updates came to, before the person is. Main thread. A check that is cancelled
// comes to nothing.
class UpdaterDelegate {
public:
    virtual ~UpdaterDelegate() = default;

    virtual void updaterDidFindValidUpdate(const AppcastItem& item) = 0;

    // `reason` is what the person reads: that there is none, or why nobody can tell.
    virtual void updaterDidNotFindUpdate(const std::string& reason) = 0;
};

} // namespace platform
