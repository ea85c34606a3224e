#include "Core/ServiceAddress.h"

#include "Core/DeviceID.h"
#include "Platform/Foundation/Text.h"
#include "Platform/Host.h"

namespace lumarin {

std::string serviceURL(const std::string& path) {
    auto base = platform::Host::current().mainBundle().info("LumarinServiceURL").value_or("");
    while (base.ends_with('/'))
        base.pop_back();
    return base + path;
}

std::vector<std::pair<std::string, std::string>> serviceHeaders() {
    std::vector<std::pair<std::string, std::string>> headers{{"Content-Type", "application/json"},
                                                             {"X-Device-ID", DeviceID::current()}};
    const auto token = platform::text::trimmed(
        platform::Host::current().mainBundle().info("LumarinServiceToken").value_or(""));
    if (!token.empty())
        headers.emplace_back("Authorization", "Bearer " + token);
    return headers;
}

} // namespace lumarin
