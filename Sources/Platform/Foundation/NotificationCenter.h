#pragma once

#include "Platform/Foundation/Observers.h"

#include <map>
#include <string>

namespace platform {

// Announcements by name, to whoever observes that name. Main thread.
class NotificationCenter {
public:
    Subscription observe(const std::string& name, std::function<void()> observer) {
        return observersByName[name].add(std::move(observer));
    }

    void post(const std::string& name) {
        if (auto found = observersByName.find(name); found != observersByName.end())
            found->second.notify();
    }

private:
    std::map<std::string, Observers<>> observersByName;
};

} // namespace platform
