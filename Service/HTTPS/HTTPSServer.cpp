#include "Service/HTTPS/HTTPSServer.h"

#include "Service/HTTPS/RequestReader.h"

#include <boost/asio/as_tuple.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/ip/v6_only.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <csignal>
#include <netinet/tcp.h>
#include <stdexcept>

namespace lumarin::service {
namespace {

using namespace std::chrono_literals;
using boost::system::error_code;

constexpr std::size_t requestsPerConnection = 10'000;
constexpr std::chrono::seconds idleTime = 10min;
constexpr std::chrono::seconds headTime = 10s;
constexpr int backlog = 1024;
constexpr auto certificateCheck = 1min;
constexpr auto pauseWithoutDescriptors = 10ms;

// So much at the most waits in the system for a client that reads slowly: nobody works ahead for it.
void limitUnsent(tcp::socket& socket) {
    const int bytes = 65536;
    ::setsockopt(socket.native_handle(), IPPROTO_TCP, TCP_NOTSENT_LOWAT, &bytes, sizeof bytes);
}

error_code listen(tcp::acceptor& acceptor, const tcp::endpoint& endpoint) {
    error_code error;
    acceptor.open(endpoint.protocol(), error);
    if (error)
        return error;
    acceptor.set_option(tcp::acceptor::reuse_address(true));
    if (endpoint.protocol() == tcp::v6())
        acceptor.set_option(asio::ip::v6_only(false));
    acceptor.bind(endpoint, error);
    if (!error)
        acceptor.listen(backlog, error);
    if (error)
        acceptor.close();
    return error;
}

} // namespace

HTTPSServer::HTTPSServer(CertificateKeeper& identity, std::size_t places, std::chrono::seconds timeForRequest,
                         Answering answer, Exchange::Report report)
    : certificates(identity),
      requestTime(timeForRequest),
      answering(std::move(answer)),
      ended(std::move(report)),
      connections(places) {
    // TLS writes to connections that are gone as to any file.
    std::signal(SIGPIPE, SIG_IGN);
}

std::uint16_t HTTPSServer::bindTo(const std::string& host, std::uint16_t port) {
    error_code error;
    const auto found = tcp::resolver(loop).resolve(host, std::to_string(port), tcp::resolver::passive, error);
    for (const auto& each : found)
        if (error = listen(acceptor, each.endpoint()); !error)
            return acceptor.local_endpoint().port();
    throw std::runtime_error("Cannot listen on " + host + ":" + std::to_string(port) + ": " + error.message()
                             + ".");
}

void HTTPSServer::serve() {
    asio::co_spawn(loop, acceptConnections(), asio::detached);
    asio::co_spawn(loop, renewCertificates(), asio::detached);
    loop.run();
}

void HTTPSServer::stopListening() {
    asio::post(loop, [this] {
        isStopping = true;
        error_code none;
        acceptor.close(none);
        connections.stop();
        endIfDone();
    });
}

void HTTPSServer::abandonAnswers() {
    asio::post(loop, [this] { connections.breakOff(); });
}

void HTTPSServer::endIfDone() {
    if (isStopping && connections.count() == 0)
        loop.stop();
}

asio::awaitable<void> HTTPSServer::acceptConnections() {
    while (!isStopping) {
        auto [error, socket] = co_await acceptor.async_accept(asio::as_tuple(asio::use_awaitable));
        if (error) {
            // Without a descriptor to spare the connection stays where it is.
            co_await pause(pauseWithoutDescriptors);
            continue;
        }
        if (!connections.makeRoom()) {
            ++refused;
            continue;
        }
        // Connections keep the certificate that they have begun with.
        auto place = std::make_unique<Connections::Place>(connections, std::move(socket));
        asio::co_spawn(loop, serveConnection(std::move(place), certificates.context()),
                       [this](const std::exception_ptr&) { endIfDone(); });
    }
}

asio::awaitable<void> HTTPSServer::renewCertificates() {
    while (true) {
        co_await pause(certificateCheck);
        certificates.renew();
    }
}

asio::awaitable<void> HTTPSServer::serveConnection(std::unique_ptr<Connections::Place> place,
                                                   std::shared_ptr<SSL_CTX> certificate) {
    error_code none;
    place->socket.native_non_blocking(true, none);
    place->socket.set_option(tcp::no_delay(true), none);
    limitUnsent(place->socket);
    TLSStream stream(place->socket, *certificate);
    bool goesOn = co_await stream.accept(workers);
    for (std::size_t left = requestsPerConnection; goesOn && left > 0 && !isStopping; --left) {
        place->awaitsClient();
        goesOn = co_await stream.awaitClient(TLSStream::Clock::now() + idleTime);
        if (goesOn && !isStopping)
            goesOn = co_await serveRequest(stream, *place, left == 1);
    }
}

asio::awaitable<bool> HTTPSServer::serveRequest(TLSStream& stream, Connections::Place& place, bool isLast) {
    RequestReader reader;
    const auto start = TLSStream::Clock::now();
    const bool hasHead = co_await reader.readHead(stream, start + headTime);
    if (!hasHead)
        co_return false;
    Exchange exchange(reader, stream, place, start + requestTime, isLast, ended);
    stream.flushBy(exchange.deadline);
    if (reader.fault() != 0)
        exchange.refuse(reader.fault());
    else
        co_await answering(exchange);
    const bool goesOn = co_await exchange.leave();
    if (exchange.hasUnreadBody) {
        place.awaitsClient();
        co_await stream.drain();
    }
    co_return goesOn;
}

} // namespace lumarin::service
