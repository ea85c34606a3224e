#pragma once

#include "Platform/Kit/Geometry.h"

#include <optional>
#include <string>

namespace platform {

// A drawing of the bundle's by its name, and what it is for those who cannot see it. Value.
struct Symbol {
    std::string name;
    std::string accessibilityDescription;

    // Nothing if the bundle has no such drawing.
    static std::optional<Symbol> named(const std::string& name,
                                       const std::string& accessibilityDescription = {});

    // How large it is in a text whose letters have that size.
    static Size sizeAt(double pointSize);

    bool operator==(const Symbol&) const = default;
};

} // namespace platform
