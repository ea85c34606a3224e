#pragma once

#include "Platform/UserNotifications.h"

#include <vector>

namespace platform::headless {

// Notices as they were delivered, the latest last.
class HeadlessNotifications : public UserNotifications {
public:
    std::vector<std::string> delivered;

    void deliver(const std::string& sentence) override { delivered.push_back(sentence); }
};

} // namespace platform::headless
