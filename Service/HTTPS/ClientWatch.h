#pragma once

#include "Service/Support/Async.h"
#include "Service/Support/DescriptorSet.h"

namespace lumarin::service {

// Tells when nobody waits for an answer any longer, without reading from the connection: what the client
// sends in the meantime, its next request perhaps, is no sign of it.
class ClientWatch {
public:
    // The socket outlives the watch.
    explicit ClientWatch(tcp::socket& client);
    ~ClientWatch() { readiness.release(); }
    ClientWatch(const ClientWatch&) = delete;
    ClientWatch& operator=(const ClientWatch&) = delete;

    // Waits until the client has closed the connection, or `until` has. Whether it is the client.
    asio::awaitable<bool> hasGoneBefore(asio::awaitable<void> until);

private:
    asio::awaitable<void> gone();

    DescriptorSet ends;
    asio::posix::stream_descriptor readiness;
};

} // namespace lumarin::service
