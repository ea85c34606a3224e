#pragma once

#include "Service/Certificate.h"
#include "Service/Handles.h"

#include <atomic>
#include <chrono>
#include <httplib.h>

namespace lumarin::service {

// The HTTP library's server over TLS, with bounds the library itself does not set: on the size and duration
// of a request, its headers included, and on connections that idle while others wait for a thread.
class HTTPSServer final : public httplib::Server {
public:
    // Throws std::runtime_error when the certificate or its key cannot be used.
    explicit HTTPSServer(const CertificateFiles& files);
    ~HTTPSServer() override;

    // Ends listen_after_bind() once the answers under way are written. Any thread, at any time.
    void stopListening();
    // Takes more waiting connections than the library's five. Called once bound.
    void widenBacklog();
    // When the request being handled on the calling thread began.
    static std::chrono::steady_clock::time_point& requestStart();

private:
    bool process_and_close_socket(socket_t socket) override;

    TLSContext context;
    Descriptor stopSignal;
    std::atomic<int> waitingConnections = 0;
};

} // namespace lumarin::service
