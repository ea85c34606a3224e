#pragma once

#include <functional>
#include <string_view>

namespace platform {

// Takes an entry for the program's log, which the layer itself knows nothing of. Any thread.
using LogSink = std::function<void(std::string_view)>;

} // namespace platform
