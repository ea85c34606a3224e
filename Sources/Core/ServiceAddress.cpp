#include "Core/ServiceAddress.h"

#include "Platform/Host.h"

namespace lumarin {

std::string serviceURL(const std::string& path) {
    auto base = platform::Host::current().mainBundle().info("LumarinServiceURL").value_or("");
    while (base.ends_with('/'))
        base.pop_back();
    return base + path;
}

} // namespace lumarin
