#include "Service/HTTPS/TLSStream.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <openssl/err.h>
#include <sys/socket.h>

namespace lumarin::service {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::seconds handshakeTime = 10s;
// A client that takes nothing for so long is not going to take the rest.
constexpr std::chrono::seconds writeTime = 15s;
constexpr std::chrono::seconds drainTime = 2s;
constexpr std::size_t drainBytes = std::size_t{16} * 1024 * 1024;

// Whether a receive has failed only because nothing is there yet. A socket reported as readable can be empty:
// the report may be older than the last read.
bool isEmptyYet(ssize_t count) {
    return count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR);
}

} // namespace

TLSStream::TLSStream(tcp::socket& accepted, SSL_CTX& context) : socket(accepted), session(SSL_new(&context)) {
    lost = !session || SSL_set_fd(session.get(), socket.native_handle()) != 1;
}

TLSStream::~TLSStream() {
    if (!lost)
        SSL_shutdown(session.get());
    ERR_clear_error();
}

asio::awaitable<bool> TLSStream::accept(asio::thread_pool& workers) {
    const auto deadline = Clock::now() + handshakeTime;
    for (int error = SSL_ERROR_WANT_READ; error != SSL_ERROR_NONE && !lost;) {
        const bool canTry = co_await canGoOn(error, deadline);
        lost = !canTry;
        if (lost)
            break;
        co_await inBackground(workers, [&] {
            ERR_clear_error();
            error = SSL_get_error(session.get(), SSL_accept(session.get()));
        });
    }
    co_return !lost;
}

asio::awaitable<bool> TLSStream::awaitClient(Clock::time_point deadline) {
    if (!received.empty() || lost || SSL_pending(session.get()) > 0)
        co_return !lost;
    received.shrink_to_fit();
    unsent.shrink_to_fit();
    char first = 0;
    ssize_t count = -1;
    do {
        const bool isReadable = co_await isReady(socket, tcp::socket::wait_read, deadline);
        if (!isReadable)
            co_return false;
        count = ::recv(socket.native_handle(), &first, 1, MSG_PEEK);
    } while (isEmptyYet(count));
    co_return true;
}

asio::awaitable<bool> TLSStream::receive(Clock::time_point deadline) {
    const bool isTaken = co_await flush();
    if (!isTaken)
        co_return false;
    const std::size_t before = received.size();
    received.resize(before + packetBytes);
    const std::size_t count = co_await repeat(
        deadline, [&] { return SSL_read(session.get(), received.data() + before, packetBytes); });
    received.resize(before + count);
    co_return count > 0;
}

asio::awaitable<bool> TLSStream::flush() {
    for (std::size_t sent = 0; sent < unsent.size() && !lost;) {
        if (sent > 0)
            co_await giveWay();
        const std::size_t count = std::min(unsent.size() - sent, packetBytes);
        const auto deadline = std::min(answerDeadline, Clock::now() + writeTime);
        const std::size_t taken = co_await repeat(deadline, [&] {
            return SSL_write(session.get(), unsent.data() + sent, static_cast<int>(count));
        });
        sent += taken;
    }
    unsent.clear();
    co_return !lost;
}

asio::awaitable<void> TLSStream::drain() {
    if (lost)
        co_return;
    SSL_shutdown(session.get());
    ::shutdown(socket.native_handle(), SHUT_WR);
    lost = true;
    const auto deadline = Clock::now() + drainTime;
    for (std::size_t taken = 0; taken < drainBytes;) {
        const bool hasMore = co_await isReady(socket, tcp::socket::wait_read, deadline);
        if (!hasMore)
            co_return;
        std::array<char, packetBytes> scratch;
        const ssize_t count = ::recv(socket.native_handle(), scratch.data(), scratch.size(), 0);
        if (isEmptyYet(count))
            continue;
        if (count <= 0)
            co_return;
        taken += static_cast<std::size_t>(count);
    }
}

// Whether an operation that has failed with `error` may be tried again: OpenSSL asks for the socket's turn by
// failing.
asio::awaitable<bool> TLSStream::canGoOn(int error, Clock::time_point deadline) {
    if (error != SSL_ERROR_WANT_READ && error != SSL_ERROR_WANT_WRITE)
        co_return false;
    co_return co_await isReady(
        socket, error == SSL_ERROR_WANT_READ ? tcp::socket::wait_read : tcp::socket::wait_write, deadline);
}

// Tries a TLS operation until it has moved something; none when it never will.
template <typename Operation>
asio::awaitable<std::size_t> TLSStream::repeat(Clock::time_point deadline, Operation operation) {
    while (!lost) {
        ERR_clear_error();
        const int count = operation();
        if (count > 0)
            co_return static_cast<std::size_t>(count);
        const bool canTry = co_await canGoOn(SSL_get_error(session.get(), count), deadline);
        lost = !canTry;
    }
    co_return 0;
}

} // namespace lumarin::service
