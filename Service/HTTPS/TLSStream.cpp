#include "Service/HTTPS/TLSStream.h"

#include <algorithm>
#include <array>
#include <netdb.h>
#include <openssl/err.h>
#include <poll.h>
#include <sys/socket.h>

namespace lumarin::service {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::seconds handshakeTime = 10s;
// A client that takes nothing for so long is not going to take the rest.
constexpr std::chrono::seconds writeTime = 15s;
constexpr std::chrono::seconds drainTime = 2s;
constexpr std::size_t drainBytes = std::size_t{16} * 1024 * 1024;
constexpr std::size_t packetBytes = 16384; // The most that TLS puts into one record.

} // namespace

TLSStream::TLSStream(SSL_CTX& context, int socket, const EndSignals& ends)
    : connection(socket), session(SSL_new(&context)), signals(ends) {
    lost = !session || SSL_set_fd(session.get(), socket) != 1;
}

TLSStream::~TLSStream() {
    if (!lost)
        SSL_shutdown(session.get());
    ERR_clear_error();
}

bool TLSStream::accept() {
    return repeat(Clock::now() + handshakeTime, [this] { return SSL_accept(session.get()); }) > 0;
}

bool TLSStream::awaitRequest(std::chrono::seconds idle) {
    if (signals.stop.isRaised())
        return false;
    if (aheadPosition < aheadEnd)
        return true;
    ahead.reset(); // Most connections idle most of the time.
    return !lost && (SSL_pending(session.get()) > 0 || wait(POLLIN, Clock::now() + idle) == Wait::ready);
}

void TLSStream::allow(std::size_t bytes, std::chrono::seconds time) {
    allowedBytes = bytes;
    readDeadline = Clock::now() + time;
}

void TLSStream::drain() {
    if (lost)
        return;
    SSL_shutdown(session.get());
    ::shutdown(connection, SHUT_WR);
    lost = true;
    std::array<char, 16384> scratch;
    const auto deadline = Clock::now() + drainTime;
    for (std::size_t taken = 0; taken < drainBytes && wait(POLLIN, deadline) == Wait::ready;) {
        const ssize_t count = ::recv(connection, scratch.data(), scratch.size(), 0);
        if (count <= 0)
            return;
        taken += static_cast<std::size_t>(count);
    }
}

ssize_t TLSStream::read(char* data, std::size_t size) {
    if (allowedBytes == 0)
        return -1;
    if (aheadPosition == aheadEnd) {
        // The client may wait for what has been written, as for the leave to send a body.
        if (!flush())
            return -1;
        if (!ahead)
            ahead = std::make_unique_for_overwrite<char[]>(packetBytes);
        const ssize_t count =
            repeat(readDeadline, [&] { return SSL_read(session.get(), ahead.get(), packetBytes); });
        if (count <= 0)
            return -1;
        aheadPosition = 0;
        aheadEnd = static_cast<std::size_t>(count);
    }
    const std::size_t count = std::min({size, allowedBytes, aheadEnd - aheadPosition});
    std::copy_n(ahead.get() + aheadPosition, count, data);
    aheadPosition += count;
    allowedBytes -= count;
    return static_cast<ssize_t>(count);
}

ssize_t TLSStream::write(const char* data, std::size_t size) {
    if (lost)
        return -1;
    const std::size_t taken = std::min(size, packetBytes - unsent.size());
    unsent.append(data, taken);
    if (unsent.size() == packetBytes && !flush())
        return -1;
    return static_cast<ssize_t>(taken);
}

bool TLSStream::flush() {
    if (!unsent.empty()) {
        const auto deadline = std::min(answerDeadline, Clock::now() + writeTime);
        repeat(deadline,
               [&] { return SSL_write(session.get(), unsent.data(), static_cast<int>(unsent.size())); });
        unsent.clear();
    }
    return !lost;
}

void TLSStream::get_remote_ip_and_port(std::string& ip, int& port) const {
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    std::array<char, NI_MAXHOST> host{};
    std::array<char, NI_MAXSERV> service{};
    if (::getpeername(connection, reinterpret_cast<sockaddr*>(&address), &length) != 0
        || ::getnameinfo(reinterpret_cast<const sockaddr*>(&address), length, host.data(), host.size(),
                         service.data(), service.size(), NI_NUMERICHOST | NI_NUMERICSERV)
               != 0)
        return;
    ip = host.data();
    port = std::atoi(service.data());
}

TLSStream::Wait TLSStream::wait(short events, Clock::time_point deadline) const {
    // An answer begun is still written when the service stops.
    const Signal& end = (events & POLLOUT) != 0 ? signals.abandon : signals.stop;
    std::array<pollfd, 2> polled{{{connection, events, 0}, {end.descriptor(), POLLIN, 0}}};
    while (true) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(
            std::max(deadline - Clock::now(), Clock::duration{}));
        const int count = ::poll(polled.data(), polled.size(), static_cast<int>(left.count()));
        if (count > 0)
            return polled[1].revents != 0 ? Wait::ended : Wait::ready;
        if (count == 0)
            return Wait::timedOut;
        if (errno != EINTR)
            return Wait::ended;
    }
}

// Tries a TLS operation until it has moved something: OpenSSL asks for the socket's turn by failing.
template <typename Operation>
ssize_t TLSStream::repeat(Clock::time_point deadline, Operation operation) {
    while (!lost) {
        ERR_clear_error();
        const int count = operation();
        if (count > 0)
            return count;
        const int error = SSL_get_error(session.get(), count);
        if (error == SSL_ERROR_WANT_READ && wait(POLLIN, deadline) == Wait::ready)
            continue;
        if (error == SSL_ERROR_WANT_WRITE && wait(POLLOUT, deadline) == Wait::ready)
            continue;
        lost = true;
    }
    return -1;
}

} // namespace lumarin::service
