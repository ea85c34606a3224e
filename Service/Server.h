#pragma once

#include "Service/Engine/TranslationEngine.h"
#include "Service/FileFolder.h"
#include "Service/HTTPS/CertificateKeeper.h"
#include "Service/HTTPS/HTTPSServer.h"
#include "Service/Limits.h"
#include "Service/Metrics.h"
#include "Service/Options.h"
#include "Service/Support/Log.h"
#include "Service/TranslationAnswer.h"

#include <cstdint>
#include <optional>
#include <string>

namespace lumarin::service {

// The service's endpoints over HTTPS. Answers each connection on a thread of its own; the engine and the log
// are called from those. Keeps and logs nothing of what is sent to it.
class Server {
public:
    // `engine` and `events` outlive the server. Throws std::runtime_error when the certificate cannot be
    // used.
    Server(const TranslationEngine& chosen, const Options& options, const Log& events);

    // Takes connections in from now on, to be answered by run(); port 0 takes any free one. Returns the port.
    // Throws std::runtime_error.
    std::uint16_t bind(const std::string& host, std::uint16_t port) { return server.bindTo(host, port); }

    // Answers until stop(); returns when the answers under way are complete.
    void run() { server.serve(); }

    // Any thread, at any time.
    void stop() { server.stopListening(); }
    // Breaks off what is still under way after stop(). Any thread.
    void abandon() { server.abandonAnswers(); }

private:
    using Request = httplib::Request;
    using Response = httplib::Response;

    bool answerSimply(const Request& request, Response& response);
    bool answerKnown(const std::string& endpoint, const Request& request, Response& response);
    void translate(AnswerForm form, const Request& request, Response& response,
                   const httplib::ContentReader& reader);
    void report(const Exchange& exchange);

    const TranslationEngine& engine;
    const Log& log;
    std::optional<FileFolder> appcast;
    Limits limits;
    Metrics metrics;
    CertificateKeeper certificates;
    HTTPSServer server;
};

} // namespace lumarin::service
