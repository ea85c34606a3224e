#pragma once

#include <exception>

namespace platform {

// Thrown by a wait that ended because its task was cancelled.
class CancellationError : public std::exception {
public:
    const char* what() const noexcept override { return "The operation was cancelled."; }
};

} // namespace platform
