#pragma once

#include <chrono>
#include <string>

namespace platform {

// The date and time in UTC in whole seconds, as in 2026-11-16T18:35:58Z. For any thread.
std::string iso8601(std::chrono::system_clock::time_point time);

} // namespace platform
