#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace platform {

// Keeps an observer registered for as long as it lives.
class [[nodiscard]] Subscription {
public:
    Subscription() = default;
    explicit Subscription(std::shared_ptr<void> observer) : registration(std::move(observer)) {}

private:
    std::shared_ptr<void> registration;
};

// Functions to call at an event, in the order they came. One thread. An observer may subscribe, unsubscribe
// or cause the next event from inside a call.
template <typename... Arguments>
class Observers {
public:
    using Function = std::function<void(Arguments...)>;

    Subscription add(Function function) {
        auto observer = std::make_shared<Function>(std::move(function));
        observers.push_back(observer);
        return Subscription(std::move(observer));
    }

    void notify(Arguments... arguments) {
        std::erase_if(observers, [](const auto& observer) { return observer.expired(); });
        for (const auto& weak : std::vector(observers))
            if (auto observer = weak.lock())
                (*observer)(arguments...);
    }

private:
    std::vector<std::weak_ptr<Function>> observers;
};

} // namespace platform
