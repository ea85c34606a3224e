#include "Platform/Kit/Color.h"

#include "Platform/Host.h"

namespace platform {

Color Color::resolved() const {
    return name == SystemColor::none ? *this : Host::current().windowServer().color(name);
}

} // namespace platform
