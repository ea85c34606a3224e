#pragma once

#include <string>

namespace lumarin {

// The address of one of the translation service's endpoints; its base is of the bundle's configuration.
std::string serviceURL(const std::string& path);

} // namespace lumarin
