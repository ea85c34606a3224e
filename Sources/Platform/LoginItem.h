#pragma once

namespace platform {

// Whether the desktop starts the program when the user logs in. Read anew each time. Main thread.
class LoginItem {
public:
    enum class Status { notRegistered, enabled };

    virtual ~LoginItem() = default;

    virtual Status status() = 0;

    // Throw std::exception with a sentence.
    virtual void registerItem() = 0;
    virtual void unregisterItem() = 0;
};

} // namespace platform
