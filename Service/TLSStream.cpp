#include "Service/TLSStream.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <openssl/err.h>
#include <poll.h>
#include <sys/socket.h>

namespace lumarin::service {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::seconds handshakeTime = 10s;
constexpr std::chrono::seconds writeTime = 15s;
constexpr std::chrono::seconds drainTime = 2s;
constexpr std::size_t drainBytes = std::size_t{16} * 1024 * 1024;

} // namespace

TLSStream::TLSStream(SSL_CTX& context, int accepted, int stop)
    : connection(accepted), session(SSL_new(&context)), stopSignal(stop) {
    ::fcntl(accepted, F_SETFL, ::fcntl(accepted, F_GETFL) | O_NONBLOCK);
    lost = !session || SSL_set_fd(session.get(), accepted) != 1;
}

TLSStream::~TLSStream() {
    if (!lost)
        SSL_shutdown(session.get());
    ERR_clear_error();
}

bool TLSStream::accept() {
    return repeat(Clock::now() + handshakeTime, [this] { return SSL_accept(session.get()); }) > 0;
}

bool TLSStream::awaitRequest(std::chrono::seconds idle, const std::function<bool()>& unwanted) {
    const auto deadline = Clock::now() + idle;
    while (!lost && SSL_pending(session.get()) == 0) {
        const auto now = Clock::now();
        const Wait outcome = wait(POLLIN, std::min(deadline, now + 1s));
        if (outcome == Wait::ready)
            break;
        if (outcome == Wait::stopped || now >= deadline || unwanted())
            return false;
    }
    return !lost;
}

void TLSStream::allow(std::size_t bytes, std::chrono::seconds time) {
    allowedBytes = bytes;
    readDeadline = Clock::now() + time;
}

void TLSStream::drain() {
    if (lost)
        return;
    SSL_shutdown(session.get());
    ::shutdown(connection.number(), SHUT_WR);
    lost = true;
    std::array<char, 16384> scratch;
    const auto deadline = Clock::now() + drainTime;
    for (std::size_t taken = 0; taken < drainBytes && wait(POLLIN, deadline) == Wait::ready;) {
        const ssize_t count = ::recv(connection.number(), scratch.data(), scratch.size(), 0);
        if (count <= 0)
            return;
        taken += static_cast<std::size_t>(count);
    }
}

ssize_t TLSStream::read(char* data, std::size_t size) {
    const auto most = static_cast<int>(std::min(size, allowedBytes));
    if (most == 0)
        return -1;
    const ssize_t count = repeat(readDeadline, [&] { return SSL_read(session.get(), data, most); });
    if (count > 0)
        allowedBytes -= static_cast<std::size_t>(count);
    return count;
}

ssize_t TLSStream::write(const char* data, std::size_t size) {
    return repeat(Clock::now() + writeTime,
                  [&] { return SSL_write(session.get(), data, static_cast<int>(size)); });
}

TLSStream::Wait TLSStream::wait(short events, Clock::time_point deadline) const {
    // An answer begun is still written when the service stops.
    const int watchedSignal = (events & POLLOUT) != 0 ? -1 : stopSignal;
    std::array<pollfd, 2> polled{{{connection.number(), events, 0}, {watchedSignal, POLLIN, 0}}};
    while (true) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(
            std::max(deadline - Clock::now(), Clock::duration{}));
        const int count = ::poll(polled.data(), polled.size(), static_cast<int>(left.count()));
        if (count > 0)
            return polled[0].revents != 0 ? Wait::ready : Wait::stopped;
        if (count == 0)
            return Wait::timedOut;
        if (errno != EINTR)
            return Wait::stopped;
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
