#pragma once

#include "Platform/LoginItem.h"

#include <optional>
#include <stdexcept>
#include <string>

namespace platform::headless {

// A login item that a test sets and makes fail.
class HeadlessLoginItem : public LoginItem {
public:
    Status current = Status::notRegistered;
    std::optional<std::string> failure;
    int attempts = 0;

    Status status() override { return current; }
    void registerItem() override { change(Status::enabled); }
    void unregisterItem() override { change(Status::notRegistered); }

private:
    void change(Status status) {
        ++attempts;
        if (failure)
            throw std::runtime_error(*failure);
        current = status;
    }
};

} // namespace platform::headless
