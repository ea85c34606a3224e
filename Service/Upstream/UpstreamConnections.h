#pragma once

#include "Platform/Network/CurlHandles.h"

#include <chrono>
#include <mutex>
#include <vector>

namespace lumarin::service {

// Connections to the model server that nobody uses at the moment, each in a libcurl handle of its own. For
// any thread.
class UpstreamConnections {
public:
    // The one used last, which is the most likely to be still open, or a new one. Throws std::bad_alloc.
    platform::CurlMulti take();
    void giveBack(platform::CurlMulti handle);

private:
    using Clock = std::chrono::steady_clock;

    struct Idle {
        platform::CurlMulti handle;
        Clock::time_point since;
    };

    std::mutex mutex;
    std::vector<Idle> idle;
};

} // namespace lumarin::service
