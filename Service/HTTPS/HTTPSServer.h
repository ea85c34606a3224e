#pragma once

#include "Service/HTTPS/CertificateKeeper.h"
#include "Service/HTTPS/Connections.h"
#include "Service/HTTPS/Exchange.h"
#include "Service/Support/Signals.h"

#include <chrono>
#include <functional>
#include <httplib.h>

namespace lumarin::service {

// The HTTP library's server over TLS, with bounds the library itself does not set: on the size and duration
// of a request, its headers included, and on connections.
class HTTPSServer final : public httplib::Server {
public:
    // Called on the connection's thread when an answer is complete, or as far as it got.
    using Ended = std::function<void(const Exchange&)>;

    HTTPSServer(CertificateKeeper& identity, std::size_t places, std::chrono::seconds timeForRequest,
                Ended report);
    ~HTTPSServer() override;

    // Takes connections in from now on. Port 0 takes any free one; returns the port. Throws
    // std::runtime_error.
    std::uint16_t bindTo(const std::string& host, std::uint16_t port);
    // Answers until stopListening(); returns when the answers under way are complete.
    void serve();
    // Any thread, at any time.
    void stopListening() { signals.stop.raise(); }
    // Breaks off the answers under way. Any thread, after stopListening().
    void abandonAnswers() { signals.abandon.raise(); }

    std::size_t openConnections() const { return connections.count(); }
    std::size_t refusedConnections() const { return refused; }

private:
    void acceptConnection();
    void serveConnection(SSL_CTX& context, int socket, Connections::Place& place);
    bool serveRequest(TLSStream& stream, Connections::Place& place, bool isLast);

    CertificateKeeper& certificates;
    const std::chrono::seconds requestTime;
    const Ended ended;
    EndSignals signals;
    std::atomic<std::size_t> refused = 0;
    Connections connections;
};

} // namespace lumarin::service
