#pragma once

#include <optional>
#include <string>

namespace platform {

// What machine this is, as its maker and its system say. Value.
struct SystemFacts {
    std::string operatingSystemVersion;
    std::optional<std::string> hardwareModel;
};

} // namespace platform
