#pragma once

#include <string>

namespace platform {

// Notices that the desktop shows on its own and takes away again. Main thread.
class UserNotifications {
public:
    virtual ~UserNotifications() = default;

    // Shows a sentence in place of the one before. Returns at once; on a desktop without notices nothing
    // happens.
    virtual void deliver(const std::string& sentence) = 0;
};

} // namespace platform
