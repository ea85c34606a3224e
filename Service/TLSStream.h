#pragma once

#include "Service/Handles.h"

#include <chrono>
#include <functional>
#include <httplib.h>

namespace lumarin::service {

// One accepted connection: TLS over a non-blocking socket, read and written by the HTTP library on the worker
// thread that serves it. Every wait has an end, and so has the number of bytes a client may send.
class TLSStream final : public httplib::Stream {
public:
    // `accepted` is the stream's own from here on. `stop` turns readable when the service stops; waits
    // for the client's bytes end then.
    TLSStream(SSL_CTX& context, int accepted, int stop);
    ~TLSStream() override;

    // The handshake. False when the client does not complete it.
    bool accept();
    // Waits for the first byte of a request, at most `idle`. `unwanted` is asked about once a second whether
    // the wait should be given up.
    bool awaitRequest(std::chrono::seconds idle, const std::function<bool()>& unwanted);
    // From now on `bytes` may be read within `time`; whatever exceeds one of them reads as a lost connection.
    void allow(std::size_t bytes, std::chrono::seconds time);
    // Whether the client has sent all it was allowed to.
    bool isExhausted() const { return allowedBytes == 0; }
    // Takes in, for a moment, what the client is still sending: closing a socket with unread bytes would
    // destroy the answer on its way.
    void drain();

    bool is_readable() const override { return !lost; }
    bool is_writable() const override { return !lost; }
    ssize_t read(char* data, std::size_t size) override;
    ssize_t write(const char* data, std::size_t size) override;
    socket_t socket() const override { return connection.number(); }
    // Who asks is of no interest here.
    void get_remote_ip_and_port(std::string&, int&) const override {}
    void get_local_ip_and_port(std::string&, int&) const override {}

private:
    using Clock = std::chrono::steady_clock;

    enum class Wait { ready, timedOut, stopped };

    Wait wait(short events, Clock::time_point deadline) const;
    template <typename Operation>
    ssize_t repeat(Clock::time_point deadline, Operation operation);

    Descriptor connection;
    TLSSession session;
    int stopSignal;
    bool lost = false;
    std::size_t allowedBytes = 0;
    Clock::time_point readDeadline;
};

} // namespace lumarin::service
