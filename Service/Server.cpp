#include "Service/Server.h"

#include "Service/HTTPSServer.h"
#include "Service/Refusal.h"
#include "Service/Requests.h"

#include <cerrno>
#include <cstring>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace lumarin::service {
namespace {

constexpr const char* streamPath = "/v1/translate";
constexpr const char* wholePath = "/v1/free";
constexpr std::size_t bodyLimit = std::size_t{1024} * 1024;

constexpr const char* plainText = "text/plain; charset=utf-8";
constexpr const char* eventStream = "text/event-stream";

using httplib::Request;
using httplib::Response;

bool isKnown(const std::string& path) {
    return path == streamPath || path == wholePath;
}

// Completes the library's own refusals: it knows no methods of a path and no limit for a body in chunks.
void explain(const Request& request, Response& response) {
    if (!response.body.empty())
        return;
    if (request.body.size() > bodyLimit)
        response.status = 413;
    if (response.status == 404 && isKnown(request.path)) {
        response.status = 405;
        response.set_header("Allow", request.path == streamPath ? "HEAD, POST" : "POST");
    }
    const char* sentence = response.status == 404   ? "There is nothing at this address."
                           : response.status == 405 ? "This address does not answer this method."
                           : response.status == 413 ? "The text is too long: a request may have 1 MiB."
                           : response.status == 500 ? "The service failed."
                                                    : "The request cannot be understood.";
    response.set_content(sentence, plainText);
}

std::string event(const std::string& piece) {
    nlohmann::json data = {{"choices", {{{"delta", {{"content", piece}}}}}}};
    return "data: " + data.dump() + "\n\n";
}

// Sends one piece each time the library asks for content; ends the connection when the translation is lost,
// so that it cannot be taken for a complete one.
bool sendPiece(Translation& translation, httplib::DataSink& sink) {
    auto send = [&](const std::string& text) { return sink.write(text.data(), text.size()); };
    try {
        if (auto piece = translation.next())
            return send(event(*piece));
    } catch (const std::exception&) {
        return false;
    }
    if (!send("data: [DONE]\n\n"))
        return false;
    sink.done();
    return true;
}

void stream(const TranslationEngine& engine, const Request& request, Response& response) {
    std::shared_ptr<Translation> translation = engine.begin(parseStreamRequest(request.body));
    response.set_header("Cache-Control", "no-cache");
    response.set_chunked_content_provider(eventStream, [translation](std::size_t, httplib::DataSink& sink) {
        return sendPiece(*translation, sink);
    });
}

void answerWhole(const TranslationEngine& engine, const Request& request, Response& response) {
    auto translation = engine.begin(parseWholeRequest(request.body));
    std::string text;
    while (auto piece = translation->next())
        text += *piece;
    response.set_content(nlohmann::json{{"text", text}}.dump(), "application/json");
}

using Answer = void (*)(const TranslationEngine&, const Request&, Response&);

httplib::Server::Handler answering(const TranslationEngine& engine, Answer answer) {
    return [&engine, answer](const Request& request, Response& response) {
        try {
            if (request.body.size() > bodyLimit)
                response.status = 413;
            else
                answer(engine, request, response);
        } catch (const Refusal& refusal) {
            response.status = refusal.status;
            response.set_content(refusal.what(), plainText);
        }
    };
}

// A client's warm-up: the connection it opens carries the next request. GET comes here too.
void warmUp(const Request& request, Response& response) {
    if (request.method == "HEAD")
        response.set_content("", eventStream);
    else
        response.status = 404;
}

std::string logLine(const Request& request, const Response& response) {
    auto taken = std::chrono::steady_clock::now() - HTTPSServer::requestStart();
    // An unknown path can hold anything, even text meant for translation.
    return request.method + " " + (isKnown(request.path) ? request.path : "(unknown path)") + " "
           + std::to_string(response.status) + " "
           + std::to_string(std::chrono::round<std::chrono::milliseconds>(taken).count()) + " ms";
}

} // namespace

Server::Server(const TranslationEngine& engine, const CertificateFiles& files, Log log)
    : server(std::make_unique<HTTPSServer>(files)) {
    server->set_payload_max_length(bodyLimit);
    server->Get(streamPath, warmUp);
    server->Post(streamPath, answering(engine, stream));
    server->Post(wholePath, answering(engine, answerWhole));
    server->set_exception_handler(
        [](const Request&, Response& response, const std::exception_ptr&) { response.status = 500; });
    server->set_error_handler(httplib::Server::Handler(explain));
    server->set_logger([log = std::move(log)](const Request& request, const Response& response) {
        log(logLine(request, response));
    });
}

Server::~Server() = default;

std::uint16_t Server::bind(const std::string& host, std::uint16_t port) {
    errno = 0;
    int bound = port == 0 ? server->bind_to_any_port(host) : server->bind_to_port(host, port) ? port : -1;
    if (bound <= 0)
        throw std::runtime_error("Cannot listen on " + host + ":" + std::to_string(port) + ": "
                                 + (errno != 0 ? std::strerror(errno) : "no such address") + ".");
    server->widenBacklog();
    return static_cast<std::uint16_t>(bound);
}

bool Server::run() {
    server->listen_after_bind();
    return isStopping;
}

void Server::stop() {
    isStopping = true;
    server->stopListening();
}

} // namespace lumarin::service
