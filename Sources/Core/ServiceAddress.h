#pragma once

#include <string>
#include <utility>
#include <vector>

namespace lumarin {

// The address of one of the translation service's endpoints; its base is of the bundle's configuration.
std::string serviceURL(const std::string& path);

// What a request for a translation tells of itself: the form of its body, the installation, and the user's
// token where the service wants one.
std::vector<std::pair<std::string, std::string>> serviceHeaders();

} // namespace lumarin
