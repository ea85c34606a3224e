#pragma once

#include "Service/Support/Handles.h"
#include "Service/Support/Signals.h"

#include <chrono>
#include <httplib.h>
#include <memory>

namespace lumarin::service {

// One accepted connection: TLS over a non-blocking socket, read and written by the HTTP library on the thread
// that serves it. Every wait has an end, and so has the number of bytes a client may send.
class TLSStream final : public httplib::Stream {
public:
    using Clock = std::chrono::steady_clock;

    // `socket` and `signals` outlive the stream. On `signals.stop` waits for the client's bytes end, on
    // `signals.abandon` all others too.
    TLSStream(SSL_CTX& context, int socket, const EndSignals& signals);
    ~TLSStream() override;

    // The handshake. False when the client does not complete it.
    bool accept();
    // Waits for the first byte of a request, at most `idle`.
    bool awaitRequest(std::chrono::seconds idle);
    // From now on `bytes` may be read within `time`; whatever exceeds one of them reads as a lost connection.
    void allow(std::size_t bytes, std::chrono::seconds time);
    // By when the answer has to be taken; a client that takes nothing for a while is given up earlier.
    void answerBy(Clock::time_point deadline) { answerDeadline = deadline; }
    // Whether the client has sent all it was allowed to.
    bool isExhausted() const { return allowedBytes == 0; }
    // Sends what has been written so far. False when the client does not take it.
    bool flush();
    // Takes in, for a moment, what the client is still sending: closing a socket with unread bytes would
    // destroy the answer on its way.
    void drain();

    bool is_readable() const override { return !lost; }
    bool is_writable() const override { return !lost; }
    ssize_t read(char* data, std::size_t size) override;
    // Kept back until flush() or until there is enough for a packet.
    ssize_t write(const char* data, std::size_t size) override;
    // The library asks only to refuse those that select() could not wait for, which nobody does here.
    socket_t socket() const override { return INVALID_SOCKET; }
    void get_remote_ip_and_port(std::string& ip, int& port) const override;
    // Of no interest here.
    void get_local_ip_and_port(std::string&, int&) const override {}

private:
    enum class Wait { ready, timedOut, ended };

    Wait wait(short events, Clock::time_point deadline) const;
    template <typename Operation>
    ssize_t repeat(Clock::time_point deadline, Operation operation);

    const int connection;
    TLSSession session;
    const EndSignals& signals;
    bool lost = false;
    std::size_t allowedBytes = 0;
    Clock::time_point readDeadline;
    Clock::time_point answerDeadline = Clock::time_point::max();
    // What has been read ahead: the library asks for a head byte by byte.
    std::unique_ptr<char[]> ahead;
    std::size_t aheadPosition = 0;
    std::size_t aheadEnd = 0;
    std::string unsent;
};

} // namespace lumarin::service
