#pragma once

#include "Service/HTTPS/CertificateKeeper.h"
#include "Service/HTTPS/Connections.h"
#include "Service/HTTPS/Exchange.h"

#include <boost/asio/io_context.hpp>
#include <chrono>
#include <functional>
#include <memory>

namespace lumarin::service {

// An HTTP server over TLS, with bounds on the size and duration of a request, its head included, and on
// connections. All of them share the thread that calls serve().
class HTTPSServer {
public:
    // Answers a request. Throws nothing.
    using Answering = std::function<asio::awaitable<void>(Exchange&)>;

    HTTPSServer(CertificateKeeper& identity, std::size_t places, std::chrono::seconds timeForRequest,
                Answering answer, Exchange::Report report);

    // Takes connections in from now on. Port 0 takes any free one; returns the port. Throws
    // std::runtime_error.
    std::uint16_t bindTo(const std::string& host, std::uint16_t port);
    // Answers until stopListening(); returns when the answers under way are complete.
    void serve();
    // Any thread, at any time.
    void stopListening();
    // Breaks off the answers under way. Any thread, after stopListening().
    void abandonAnswers();

    // Where coroutines run as long as serve() does.
    asio::io_context& context() { return loop; }
    // For what would hold the connections up.
    asio::thread_pool& pool() { return workers; }

    std::size_t openConnections() const { return connections.count(); }
    std::size_t refusedConnections() const { return refused; }

private:
    asio::awaitable<void> acceptConnections();
    asio::awaitable<void> renewCertificates();
    asio::awaitable<void> serveConnection(std::unique_ptr<Connections::Place> place,
                                          std::shared_ptr<SSL_CTX> certificate);
    asio::awaitable<bool> serveRequest(TLSStream& stream, Connections::Place& place, bool isLast);
    void endIfDone();

    CertificateKeeper& certificates;
    const std::chrono::seconds requestTime;
    const Answering answering;
    const Exchange::Report ended;
    std::size_t refused = 0;
    bool isStopping = false;
    Connections connections;
    asio::io_context loop{1};
    tcp::acceptor acceptor{loop};
    asio::thread_pool workers; // The first to go, as it hands its results to the loop.
};

} // namespace lumarin::service
