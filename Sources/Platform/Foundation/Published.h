#pragma once

#include "Platform/Foundation/Observers.h"

namespace platform {

// A value that others may follow. A subscriber is called at once with the current value and then at each
// assignment, before the property reads back as the new value, also when that equals the old one. One thread.
template <typename T>
class Published {
public:
    explicit Published(T initial) : current(std::move(initial)) {}

    const T& value() const { return current; }
    operator const T&() const { return current; }

    Published& operator=(T next) {
        observers.notify(next);
        current = std::move(next);
        return *this;
    }

    Subscription subscribe(std::function<void(const T&)> observer) {
        observer(current);
        return observers.add(std::move(observer));
    }

private:
    T current;
    Observers<const T&> observers;
};

} // namespace platform
