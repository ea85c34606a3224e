#include "Platform/Kit/Symbol.h"

#include "Platform/Host.h"

#include <cmath>

namespace platform {

std::optional<Symbol> Symbol::named(const std::string& name, const std::string& accessibilityDescription) {
    if (!Host::current().mainBundle().pathForResource("Symbols/" + name, "svg"))
        return std::nullopt;
    return Symbol{name, accessibilityDescription};
}

Size Symbol::sizeAt(double pointSize) {
    const double side = std::ceil(pointSize * 1.2);
    return {side, side};
}

} // namespace platform
