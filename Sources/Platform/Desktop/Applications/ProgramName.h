#pragma once

#include <optional>
#include <string>

#include <sys/types.h>

namespace platform::desktop {

// The name of a process's program, of its script where an interpreter runs one. Any thread.
std::optional<std::string> programOf(pid_t process);

} // namespace platform::desktop
