#pragma once

#include <chrono>
#include <curl/curl.h>
#include <memory>
#include <mutex>
#include <vector>

namespace lumarin::service {

// Connections to the model server that nobody uses at the moment, each in a libcurl handle of its own. For
// any thread.
class UpstreamConnections {
public:
    struct Free {
        void operator()(CURLM* handle) const { curl_multi_cleanup(handle); }
    };
    using Handle = std::unique_ptr<CURLM, Free>;

    // The one used last, which is the most likely to be still open, or a new one. Throws std::bad_alloc.
    Handle take();
    void giveBack(Handle handle);

private:
    using Clock = std::chrono::steady_clock;

    struct Idle {
        Handle handle;
        Clock::time_point since;
    };

    std::mutex mutex;
    std::vector<Idle> idle;
};

} // namespace lumarin::service
