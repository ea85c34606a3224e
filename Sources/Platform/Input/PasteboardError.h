#pragma once

#include <stdexcept>

namespace platform {

// A pasteboard could not be read or taken; says so in a sentence for the log.
class PasteboardError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

} // namespace platform
