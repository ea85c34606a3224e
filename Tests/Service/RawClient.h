#pragma once

#include "Service/Support/Handles.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/socket.h>

namespace tests {

// A connection over TLS whose bytes are the test's own. Trusts whatever it meets.
class RawClient {
public:
    explicit RawClient(int port) : socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(port));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        SSL_set_fd(session.get(), socket.number());
        if (::connect(socket.number(), reinterpret_cast<sockaddr*>(&address), sizeof address) != 0
            || SSL_connect(session.get()) != 1)
            throw std::runtime_error("No connection");
    }

    // False once the server has closed the connection.
    bool send(std::string_view bytes) {
        return bytes.empty() || SSL_write(session.get(), bytes.data(), static_cast<int>(bytes.size())) > 0;
    }

    // What comes next; nothing once the server has closed the connection.
    std::string some() {
        std::array<char, 4096> buffer{};
        const int count = SSL_read(session.get(), buffer.data(), buffer.size());
        return {buffer.data(), static_cast<std::size_t>(std::max(count, 0))};
    }

    // All until the server closes the connection.
    std::string rest() {
        std::string all;
        for (std::string next; !(next = some()).empty();)
            all += next;
        return all;
    }

private:
    lumarin::service::Descriptor socket;
    std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context{SSL_CTX_new(TLS_client_method()),
                                                              &SSL_CTX_free};
    lumarin::service::TLSSession session{SSL_new(context.get())};
};

} // namespace tests
