#pragma once

#include "Service/Certificate.h"
#include "Service/TranslationEngine.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace lumarin::service {

class HTTPSServer;

// The service's endpoints over HTTPS. Answers each connection on a thread of its own; the engine and the log
// are called from those. Keeps and logs nothing of what is sent to it.
class Server {
public:
    // Takes one line without a line break for every request answered.
    using Log = std::function<void(const std::string& line)>;

    // `engine` outlives the server. Throws std::runtime_error when the certificate cannot be used.
    Server(const TranslationEngine& engine, const CertificateFiles& files, Log log);
    ~Server();

    // Takes connections in from now on, to be answered by run(); port 0 takes any free one. Returns the port.
    // Throws std::runtime_error.
    std::uint16_t bind(const std::string& host, std::uint16_t port);

    // Answers until stop(); returns when the answers under way are complete. False when it ended by a
    // failure.
    bool run();

    // Any thread, at any time.
    void stop();

private:
    std::unique_ptr<HTTPSServer> server;
    std::atomic<bool> isStopping = false;
};

} // namespace lumarin::service
