#include "Core/DeviceID.h"

#include "Platform/Foundation/UUID.h"
#include "Platform/Host.h"

namespace lumarin {

std::string DeviceID::current() {
    constexpr const char* key = "Lumarin.deviceID";
    auto& defaults = platform::Host::current().userDefaults();
    if (auto stored = defaults.string(key))
        return *stored;
    auto created = platform::randomUUID();
    defaults.set(key, created);
    return created;
}

} // namespace lumarin
