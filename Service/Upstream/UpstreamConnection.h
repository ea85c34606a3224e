#pragma once

#include "Platform/Network/CurlHandles.h"
#include "Service/Support/DescriptorSet.h"

#include <chrono>
#include <optional>

namespace lumarin::service {

// Carries one transfer at a time to the model server, in a libcurl handle of its own, in which the connection
// outlives the transfer. Does nothing by itself. For one thread.
class UpstreamConnection {
public:
    using Clock = std::chrono::steady_clock;

    // Throws std::bad_alloc, and std::system_error.
    UpstreamConnection();
    UpstreamConnection(const UpstreamConnection&) = delete;
    UpstreamConnection& operator=(const UpstreamConnection&) = delete;

    CURLM* handle() const { return multi.get(); }

    // Sees to all that has arrived or is due, without waiting. The transfer's result once it has ended.
    std::optional<CURLcode> perform();

    // Readable when perform() has something to do, as it has when it is due.
    int descriptor() const { return sockets.descriptor(); }
    Clock::time_point due() const { return timer; }

private:
    static int onSocket(CURL*, curl_socket_t socket, int what, void* self, void*) noexcept;
    static int onTimer(CURLM*, long milliseconds, void* self) noexcept;

    DescriptorSet sockets;
    Clock::time_point timer = Clock::time_point::max();
    platform::CurlMulti multi; // Calls back while it is dropped.
};

} // namespace lumarin::service
