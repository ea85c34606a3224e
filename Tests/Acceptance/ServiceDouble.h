#pragma once

#include "Support/TLSServer.h"
#include "Support/TestProcess.h"

namespace tests {

// A translation service on the loopback that translates a text into the same text in brackets, piece by
// piece.
class ServiceDouble {
public:
    static std::string translationOf(const std::string& text) { return "T(" + text + ")"; }

    std::string url() const { return "https://localhost:" + std::to_string(server.port); }
    std::string certificatePEM() const { return identity.certificatePEM(); }

    // When the last request had arrived in full, and when the end of the answer to it was sent.
    Clock::time_point requestTime() const { return requested; }
    Clock::time_point answerTime() const { return answered; }

    // Time taken between a request and the answer to it.
    std::atomic<std::chrono::milliseconds> thinking{0ms};

private:
    void serve(TLSConnection& connection);

    Identity identity{"DNS:localhost,IP:127.0.0.1"};
    std::atomic<Clock::time_point> requested{};
    std::atomic<Clock::time_point> answered{};
    TLSServer server{&identity, [this](TLSConnection& connection) { serve(connection); }};
};

} // namespace tests
