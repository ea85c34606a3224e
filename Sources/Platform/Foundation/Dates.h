#pragma once

#include <chrono>
#include <string>

namespace platform {

// The date and time in UTC in whole seconds, as in 2026-11-16T18:35:58Z. For any thread.
std::string iso8601(std::chrono::system_clock::time_point time);

enum class TimeZone { utc, local };

// As the pattern of std::strftime says, which gives a text for every time. For any thread.
std::string formatted(std::chrono::system_clock::time_point time, const char* pattern, TimeZone zone);

} // namespace platform
