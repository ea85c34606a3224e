#pragma once

#include "Service/Support/Async.h"
#include "Service/Support/Handles.h"

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

namespace lumarin::service {

// TLS over an accepted connection. Every wait has an end. Stands on the socket itself rather than on Asio's
// own TLS, which keeps buffers for each connection, while most of them idle most of the time.
class TLSStream {
public:
    using Clock = std::chrono::steady_clock;

    // The socket outlives the stream.
    TLSStream(tcp::socket& accepted, SSL_CTX& context);
    ~TLSStream();
    TLSStream(const TLSStream&) = delete;
    TLSStream& operator=(const TLSStream&) = delete;

    // The handshake, computed by `workers`. False when the client does not complete it.
    asio::awaitable<bool> accept(asio::thread_pool& workers);

    // Waits without holding any memory for what may never come. False when nothing has come by `deadline`.
    asio::awaitable<bool> awaitClient(Clock::time_point deadline);
    // Adds to `received`, after what has been written has left: the client may wait for that, as for the
    // leave to send a body. False when nothing comes by `deadline`, or ever again.
    asio::awaitable<bool> receive(Clock::time_point deadline);
    // What has come and not been taken out.
    std::string received;

    // Kept back until flush().
    void write(std::string_view bytes) { unsent += bytes; }
    bool isWorthFlushing() const { return unsent.size() >= packetBytes; }
    // By when all has to be taken; a client that takes nothing for a while is given up earlier.
    void flushBy(Clock::time_point deadline) { answerDeadline = deadline; }
    // False when the client does not take it.
    asio::awaitable<bool> flush();

    // Ends what is written, and takes in for a moment what the client is still sending: closing a socket with
    // unread bytes would destroy the answer on its way.
    asio::awaitable<void> drain();

    bool isLost() const { return lost; }

private:
    static constexpr std::size_t packetBytes = 16384; // The most that TLS puts into one record.

    asio::awaitable<bool> canGoOn(int error, Clock::time_point deadline);
    template <typename Operation>
    asio::awaitable<std::size_t> repeat(Clock::time_point deadline, Operation operation);

    tcp::socket& socket;
    const TLSSession session;
    bool lost = false;
    Clock::time_point answerDeadline = Clock::time_point::max();
    std::string unsent;
};

} // namespace lumarin::service
