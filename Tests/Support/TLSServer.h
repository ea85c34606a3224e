#pragma once

#include "Support/Identity.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <list>
#include <mutex>
#include <openssl/ssl.h>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace tests {

// An accepted connection, from the server's side. Used on its script's thread.
class TLSConnection {
public:
    struct Request {
        std::string head;
        std::string body;
    };

    // Without a context the connection is plain TCP.
    TLSConnection(int accepted, SSL_CTX* context);
    ~TLSConnection();
    TLSConnection(const TLSConnection&) = delete;
    TLSConnection& operator=(const TLSConnection&) = delete;

    // The next request, none once the client has closed the connection.
    std::optional<Request> readRequest();

    // False once the client has closed the connection.
    bool send(std::string_view bytes);

    // Sends each piece in a packet of its own.
    void sendSlowly(const std::vector<std::string>& pieces,
                    std::chrono::milliseconds pause = std::chrono::milliseconds(3));

    void waitForClose();

    // Ends the connection at the end of the script without the proper end of TLS, or with a TCP reset.
    void breakOff() { isProperEnd = false; }
    void reset();

    // Any thread; ends what the script is waiting for.
    void shutDown();

private:
    bool receive();

    int socket;
    std::unique_ptr<SSL, decltype(&SSL_free)> tls{nullptr, &SSL_free};
    std::string received;
    bool isProperEnd = true;
};

// A server on a port of its own on the loopback that runs `script` for each connection, on a thread each.
class TLSServer {
public:
    using Script = std::function<void(TLSConnection&)>;

    // Plain TCP without an identity.
    TLSServer(const Identity* identity, Script forEach);
    ~TLSServer();
    TLSServer(const TLSServer&) = delete;
    TLSServer& operator=(const TLSServer&) = delete;

    const int port;
    std::atomic<int> accepted = 0;

private:
    TLSServer(std::pair<int, int> listening, const Identity* identity, Script forEach);
    void serve();

    const std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context;
    const Script script;
    const int listener;
    std::mutex mutex;
    std::list<TLSConnection> connections;
    std::vector<std::thread> threads;
    std::thread acceptor;
};

// A socket that listens on the loopback, and its port.
std::pair<int, int> listenOnLoopback();
// One that nobody listens on.
int freePort();

// Answers, ready to be sent.
std::string answer(const std::string& status, const std::string& headers, const std::string& body);
std::string chunk(const std::string& bytes);
inline constexpr const char* streamHead = "HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\n"
                                          "Transfer-Encoding: chunked\r\n\r\n";
inline constexpr const char* streamEnd = "0\r\n\r\n";

} // namespace tests
