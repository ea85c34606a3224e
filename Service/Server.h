#pragma once

#include "Service/Engine/TranslationEngine.h"
#include "Service/FileFolder.h"
#include "Service/HTTPS/CertificateKeeper.h"
#include "Service/HTTPS/HTTPSServer.h"
#include "Service/Limits.h"
#include "Service/Metrics.h"
#include "Service/Options.h"
#include "Service/Support/Log.h"
#include "Service/Tokens.h"
#include "Service/TranslationAnswer.h"

#include <cstdint>
#include <optional>
#include <string>

namespace lumarin::service {

// The service's endpoints over HTTPS. Answers all connections on the thread that calls run(); the engine and
// the log are called from that. Keeps and logs nothing of what is sent to it.
class Server {
public:
    // `engine` and `events` outlive the server. Throws std::runtime_error when the certificate or the tokens
    // cannot be used.
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

    // Where coroutines run as long as run() does.
    asio::io_context& context() { return server.context(); }

private:
    asio::awaitable<void> answer(Exchange& exchange);
    asio::awaitable<void> answerKnown(Exchange& exchange);
    asio::awaitable<void> send(const FileFolder::File& file, Exchange& exchange);
    asio::awaitable<void> translate(AnswerForm form, Exchange& exchange);
    void report(const Exchange& exchange);

    const TranslationEngine& engine;
    const bool hasFixedPrompt;
    const Log& log;
    std::optional<FileFolder> appcast;
    std::optional<Tokens> tokens;
    Limits limits;
    Metrics metrics;
    CertificateKeeper certificates;
    HTTPSServer server;
};

} // namespace lumarin::service
