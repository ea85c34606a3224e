#pragma once

#include <string>

namespace platform {

// A new random (version 4) UUID in upper-case letters, from the system's random source. For any thread.
std::string randomUUID();

} // namespace platform
