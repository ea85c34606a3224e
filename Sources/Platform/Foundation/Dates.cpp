#include "Platform/Foundation/Dates.h"

#include <array>
#include <ctime>

namespace platform {

std::string iso8601(std::chrono::system_clock::time_point time) {
    return formatted(time, "%Y-%m-%dT%H:%M:%SZ", TimeZone::utc);
}

std::string formatted(std::chrono::system_clock::time_point time, const char* pattern, TimeZone zone) {
    const auto seconds = std::chrono::system_clock::to_time_t(std::chrono::floor<std::chrono::seconds>(time));
    std::tm parts{};
    if (zone == TimeZone::utc)
        gmtime_r(&seconds, &parts);
    else
        localtime_r(&seconds, &parts);
    std::array<char, 128> text{};
    return {text.data(), std::strftime(text.data(), text.size(), pattern, &parts)};
}

} // namespace platform
