#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace lumarin {

// The longest translation in bytes; a service that never ends must not fill the memory.
inline constexpr std::size_t maximumTranslation = std::size_t{1} << 20U;

// Adds to a translation what the service gave, without the control characters that could steer the program it
// is pasted into (a terminal) or show other words than those that are sent. Throws HTTPError where it gets
// longer than the maximum.
void appendReceived(std::string& translation, std::string_view piece);

} // namespace lumarin
