#include "Service/HTTPS/HTTPSServer.h"

#include "Service/HTTPS/TLSStream.h"

#include <cstring>
#include <poll.h>
#include <stdexcept>

namespace lumarin::service {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t requestsPerConnection = 10'000;
constexpr std::chrono::seconds idleTime = 10min;
constexpr std::size_t headerBytes = std::size_t{32} * 1024;
constexpr std::chrono::seconds headerTime = 10s;
// More than any body that is accepted: what is too long is refused with a sentence, not cut off.
constexpr std::size_t bodyBytes = std::size_t{16} * 1024 * 1024;
constexpr std::chrono::seconds bodyTime = 30s;
constexpr int backlog = 1024;
constexpr std::chrono::milliseconds certificateCheck = 1min;

// What the library makes of these would only open ways to hold the service up: a body grows when it is
// unpacked, an answer is kept back to be packed, ranges can be many, and forms are taken apart. Whatever it
// is called, the body is to be JSON.
void forgetSpecialWishes(httplib::Request& request) {
    for (const char* name : {"Accept-Encoding", "Content-Encoding", "Content-Type", "Range"})
        request.headers.erase(name);
    request.ranges.clear();
}

} // namespace

HTTPSServer::HTTPSServer(CertificateKeeper& identity, std::size_t places, std::chrono::seconds timeForRequest,
                         Ended report)
    : certificates(identity), requestTime(timeForRequest), ended(std::move(report)), connections(places) {
    set_tcp_nodelay(true);
    set_keep_alive_timeout(idleTime.count());
    set_keep_alive_max_count(requestsPerConnection);
    // The library's own choice would let two services share a port unnoticed.
    set_socket_options([](socket_t socket) {
        const int yes = 1;
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    set_logger([](const httplib::Request&, const httplib::Response& response) {
        Exchange::current().status = response.status;
    });
}

HTTPSServer::~HTTPSServer() {
    if (svr_sock_ != INVALID_SOCKET)
        ::close(svr_sock_);
}

std::uint16_t HTTPSServer::bindTo(const std::string& host, std::uint16_t port) {
    errno = 0;
    const int bound = port == 0 ? bind_to_any_port(host) : bind_to_port(host, port) ? port : -1;
    if (bound <= 0)
        throw std::runtime_error("Cannot listen on " + host + ":" + std::to_string(port) + ": "
                                 + (errno != 0 ? std::strerror(errno) : "no such address") + ".");
    // More waiting connections than the library's five.
    ::listen(svr_sock_, backlog);
    return static_cast<std::uint16_t>(bound);
}

void HTTPSServer::serve() {
    // The library's own loop ends for good at the first connection that fails before it is taken in.
    std::array<pollfd, 2> polled{{{svr_sock_, POLLIN, 0}, {signals.stop.descriptor(), POLLIN, 0}}};
    auto nextCheck = Exchange::Clock::now() + certificateCheck;
    while (polled[1].revents == 0) {
        if (polled[0].revents != 0)
            acceptConnection();
        const auto now = Exchange::Clock::now();
        if (now >= nextCheck) {
            certificates.renew();
            nextCheck = now + certificateCheck;
        }
        ::poll(polled.data(), polled.size(), static_cast<int>(certificateCheck.count()));
    }
    ::shutdown(svr_sock_, SHUT_RDWR);
    connections.awaitEnd();
}

void HTTPSServer::acceptConnection() {
    const int socket = ::accept4(svr_sock_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (socket < 0) {
        // Without a descriptor to spare the connection stays where it is.
        if (errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM)
            std::this_thread::sleep_for(10ms);
        return;
    }
    // Connections keep the certificate that they have begun with.
    const bool isAdded =
        connections.add(socket, [this, context = certificates.context()](int accepted, auto& place) {
            serveConnection(*context, accepted, place);
        });
    refused += isAdded ? 0 : 1;
}

void HTTPSServer::serveConnection(SSL_CTX& context, int socket, Connections::Place& place) {
    TLSStream stream(context, socket, signals);
    bool goesOn = stream.accept();
    for (std::size_t left = requestsPerConnection; goesOn && left > 0; --left) {
        place.awaitsClient();
        goesOn = stream.awaitRequest(idleTime);
        if (!goesOn)
            break;
        const auto now = Exchange::Clock::now();
        Exchange exchange;
        exchange.start = now;
        exchange.deadline = now + requestTime;
        exchange.place = &place;
        exchange.stream = &stream;
        exchange.socket = socket;
        exchange.signals = &signals;
        Exchange::current() = std::move(exchange);
        goesOn = serveRequest(stream, place, left == 1);
    }
}

bool HTTPSServer::serveRequest(TLSStream& stream, Connections::Place& place, bool isLast) {
    Exchange& exchange = Exchange::current();
    stream.allow(headerBytes, headerTime);
    stream.answerBy(exchange.deadline);
    bool understood = false;
    bool closed = false;
    const bool served = process_request(stream, isLast, closed, [&](httplib::Request& request) {
        understood = true;
        exchange.method = request.method;
        exchange.isOldHTTP = request.version == "HTTP/1.0";
        if (exchange.isOldHTTP) {
            request.headers.erase("Connection");
            request.set_header("Connection", "close");
        }
        forgetSpecialWishes(request);
        stream.allow(bodyBytes, bodyTime);
    });
    // Before the end of the answer leaves, so that whoever has it finds it counted.
    if (exchange.status != 0)
        ended(exchange);
    const bool taken = stream.flush();
    exchange.kept.reset();
    if (!served || !understood || exchange.hasUnreadBody || stream.isExhausted()) {
        place.awaitsClient();
        stream.drain();
    }
    return taken && !closed && !exchange.isOldHTTP && stream.is_readable();
}

} // namespace lumarin::service
