#pragma once

#include <algorithm>
#include <string_view>

namespace platform {

// Whether an address is reached over TLS. Not even this computer itself may be asked for updates without it.
inline bool isSecureAddress(std::string_view url) {
    constexpr std::string_view scheme = "https://";
    return url.size() > scheme.size()
           && std::ranges::equal(url.substr(0, scheme.size()), scheme, [](char one, char other) {
                  return (one >= 'A' && one <= 'Z' ? one | 0x20 : one) == other;
              });
}

} // namespace platform
