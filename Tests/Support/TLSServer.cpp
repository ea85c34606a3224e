#include "Support/TLSServer.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <csignal>
#include <netinet/tcp.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace tests {

TLSConnection::TLSConnection(int accepted, SSL_CTX* context) : socket(accepted) {
    const int on = 1;
    setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    if (context) {
        tls.reset(SSL_new(context));
        SSL_set_fd(tls.get(), socket);
        SSL_set_accept_state(tls.get());
    }
}

TLSConnection::~TLSConnection() {
    if (tls && isProperEnd && SSL_is_init_finished(tls.get()))
        SSL_shutdown(tls.get());
    close(socket);
}

std::optional<TLSConnection::Request> TLSConnection::readRequest() {
    std::size_t end = std::string::npos;
    while ((end = received.find("\r\n\r\n")) == std::string::npos)
        if (!receive())
            return std::nullopt;
    Request request{received.substr(0, end + 2), {}};
    received.erase(0, end + 4);
    std::string lower = request.head;
    std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return tolower(c); });
    const std::string field = "\r\ncontent-length:";
    const std::size_t at = lower.find(field);
    const std::size_t length = at == std::string::npos ? 0 : std::stoul(lower.substr(at + field.size()));
    while (received.size() < length)
        if (!receive())
            return std::nullopt;
    request.body = received.substr(0, length);
    received.erase(0, length);
    return request;
}

bool TLSConnection::send(std::string_view bytes) {
    while (!bytes.empty()) {
        const auto sent = tls ? SSL_write(tls.get(), bytes.data(), static_cast<int>(bytes.size()))
                              : ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

void TLSConnection::sendSlowly(const std::vector<std::string>& pieces, std::chrono::milliseconds pause) {
    for (const std::string& piece : pieces) {
        if (!send(piece))
            return;
        std::this_thread::sleep_for(pause);
    }
}

void TLSConnection::waitForClose() {
    while (receive())
        continue;
}

void TLSConnection::reset() {
    const linger atOnce{1, 0};
    setsockopt(socket, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    breakOff();
}

void TLSConnection::shutDown() {
    ::shutdown(socket, SHUT_RDWR);
}

bool TLSConnection::receive() {
    std::array<char, 16384> buffer{};
    const auto count = tls ? SSL_read(tls.get(), buffer.data(), buffer.size())
                           : ::recv(socket, buffer.data(), buffer.size(), 0);
    if (count <= 0)
        return false;
    received.append(buffer.data(), static_cast<std::size_t>(count));
    return true;
}

namespace {

SSL_CTX* makeContext(const Identity* identity) {
    if (!identity)
        return nullptr;
    SSL_CTX* context = SSL_CTX_new(TLS_server_method());
    SSL_CTX_use_certificate(context, identity->certificate.get());
    SSL_CTX_use_PrivateKey(context, identity->key.get());
    return context;
}

int portOf(int socket) {
    sockaddr_in address{};
    socklen_t length = sizeof address;
    getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length);
    return ntohs(address.sin_port);
}

} // namespace

std::pair<int, int> listenOnLoopback() {
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0
        || listen(listener, 128) != 0)
        throw std::runtime_error("No port on the loopback");
    return {listener, portOf(listener)};
}

int freePort() {
    const auto [listener, port] = listenOnLoopback();
    close(listener);
    return port;
}

TLSServer::TLSServer(const Identity* identity, Script forEach)
    : TLSServer(listenOnLoopback(), identity, std::move(forEach)) {}

TLSServer::TLSServer(std::pair<int, int> listening, const Identity* identity, Script forEach)
    : port(listening.second),
      context(makeContext(identity), &SSL_CTX_free),
      script(std::move(forEach)),
      listener(listening.first),
      acceptor([this] { serve(); }) {}

TLSServer::~TLSServer() {
    ::shutdown(listener, SHUT_RDWR);
    acceptor.join();
    {
        std::lock_guard lock(mutex);
        for (TLSConnection& connection : connections)
            connection.shutDown();
    }
    for (std::thread& thread : threads)
        thread.join();
    close(listener);
}

void TLSServer::serve() {
    // A client that has gone is an error of the write and no more.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    for (;;) {
        const int socket = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0)
            return;
        ++accepted;
        std::lock_guard lock(mutex);
        const auto connection = connections.emplace(connections.end(), socket, context.get());
        threads.emplace_back([this, connection] {
            script(*connection);
            std::lock_guard lockAtEnd(mutex);
            connections.erase(connection);
        });
    }
}

std::string answer(const std::string& status, const std::string& headers, const std::string& body) {
    return "HTTP/1.1 " + status + "\r\n" + headers + "Content-Length: " + std::to_string(body.size())
           + "\r\n\r\n" + body;
}

std::string chunk(const std::string& bytes) {
    std::array<char, 16> length{};
    std::snprintf(length.data(), length.size(), "%zx\r\n", bytes.size());
    return length.data() + bytes + "\r\n";
}

} // namespace tests
