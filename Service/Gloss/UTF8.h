#pragma once

#include <cstddef>
#include <string_view>

namespace lumarin::service {

// The bytes of the character that begins at `position` of well-formed UTF-8.
std::string_view characterAt(std::string_view text, std::size_t position);

// Whether the character is a Chinese one.
bool isHan(std::string_view character);

} // namespace lumarin::service
