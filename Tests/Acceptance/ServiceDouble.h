#pragma once

#include "Desktop/DisplayProcess.h"
#include "Support/TLSServer.h"

namespace tests {

// A translation service on the loopback that translates a text into the same text in brackets, piece by
// piece.
class ServiceDouble {
public:
    static std::string translationOf(const std::string& text) { return "T(" + text + ")"; }

    std::string url() const { return "https://localhost:" + std::to_string(server.port); }
    std::string authorityPEM() const { return authority.pem(); }

    // When the last request had arrived in full, and when the end of the answer to it was sent.
    Clock::time_point requestTime() const { return requested; }
    Clock::time_point answerTime() const { return answered; }

    // What the last translation was asked for with.
    std::string lastRequest() const;

    // Time taken between a request and the answer to it.
    std::atomic<std::chrono::milliseconds> thinking{0ms};

private:
    void serve(TLSConnection& connection);

    TestAuthority authority;
    Identity identity = authority.issue("DNS:localhost,IP:127.0.0.1");
    std::atomic<Clock::time_point> requested{};
    std::atomic<Clock::time_point> answered{};
    mutable std::mutex mutex;
    std::string last;
    TLSServer server{&identity, [this](TLSConnection& connection) { serve(connection); }};
};

} // namespace tests
