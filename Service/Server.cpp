#include "Service/Server.h"

#include "Service/Engine/Refusal.h"
#include "Service/HTTPS/TLSStream.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <strings.h>

namespace lumarin::service {
namespace {

constexpr const char* streamPath = "/v1/translate";
constexpr const char* wholePath = "/v1/free";
constexpr const char* healthPath = "/healthz";
constexpr const char* metricsPath = "/metrics";
constexpr std::string_view appcastPath = "/appcast/";
constexpr std::size_t bodyLimit = std::size_t{1024} * 1024;
constexpr std::size_t longestDeviceName = 128;
constexpr int clientClosedRequest = 499; // As other servers log it; nobody is there to read it.

constexpr const char* plainText = "text/plain; charset=utf-8";
constexpr const char* metricsText = "text/plain; version=0.0.4; charset=utf-8";

using httplib::Request;
using httplib::Response;

// Which of the service's endpoints a path names; empty if none. Any other path can hold anything, even text
// meant for translation.
std::string endpointOf(const std::string& path) {
    if (path.starts_with(appcastPath))
        return std::string(appcastPath);
    constexpr std::array known{streamPath, wholePath, healthPath, metricsPath};
    return std::ranges::find(known, path) != known.end() ? path : std::string();
}

const char* methodsOf(const std::string& endpoint) {
    return endpoint == streamPath ? "HEAD, POST" : endpoint == wholePath ? "POST" : "GET, HEAD";
}

// Completes refusals that have no sentence yet, the library's among them.
void explain(const Request&, Response& response) {
    if (Exchange::current().hasUnreadBody)
        response.set_header("Connection", "close");
    if (!response.body.empty())
        return;
    const char* sentence = response.status == 404   ? "There is nothing at this address."
                           : response.status == 405 ? "This address does not answer this method."
                           : response.status == 411 ? "The request does not say how long it is."
                           : response.status == 413 ? "The text is too long: a request may have 1 MiB."
                           : response.status == 414 ? "The address is too long."
                           : response.status == 500 ? "The service failed."
                                                    : "The request cannot be understood.";
    response.set_content(sentence, plainText);
}

void refuse(const Refusal& refusal, Response& response, Exchange& exchange) {
    response.status = refusal.status;
    std::string sentence = refusal.what();
    if (!refusal.quotation.empty())
        sentence += " It says: " + refusal.quotation;
    response.set_content(sentence, plainText);
    if (refusal.retryAfter)
        response.set_header("Retry-After", std::to_string(refusal.retryAfter->count()));
    exchange.failure = refusal.cause;
    exchange.failureDetail = refusal.cause.empty() ? "" : refusal.what();
}

// Takes the whole body from the connection, but keeps no more than a request may have: its length may be
// known only at its end.
std::string readBody(const httplib::ContentReader& reader) {
    std::string body;
    bool isTooLong = false;
    const bool isRead = reader([&](const char* data, std::size_t size) {
        isTooLong = isTooLong || body.size() + size > bodyLimit;
        if (!isTooLong)
            body.append(data, size);
        return true;
    });
    if (isTooLong)
        throw Refusal(413, "");
    const Exchange& exchange = Exchange::current();
    if (!isRead && exchange.stream->is_readable())
        throw Refusal(400, "");
    if (!isRead && exchange.signals->stop.isRaised())
        throw Refusal(503, "The service is stopping.", "stopped");
    if (!isRead)
        throw Abandoned("The request did not arrive whole.");
    return body;
}

std::string deviceOf(const Request& request) {
    const std::string name = request.get_header_value("X-Device-ID");
    return name.empty() ? "address " + request.remote_addr : "device " + name.substr(0, longestDeviceName);
}

// What is wrong with the announcement of a request's body, as a status; zero if nothing is. One that could be
// read in two ways would let a request hide in another's body.
int faultOfBody(const Request& request) {
    const auto lengths = request.get_header_value_count("Content-Length");
    const auto encodings = request.get_header_value_count("Transfer-Encoding");
    if (lengths + encodings == 0)
        return 411;
    const std::string length = request.get_header_value("Content-Length");
    const bool isNumber =
        !length.empty() && std::ranges::all_of(length, [](unsigned char c) { return std::isdigit(c) != 0; });
    if (lengths + encodings > 1 || (lengths == 1 && !isNumber)
        || (encodings == 1
            && ::strcasecmp(request.get_header_value("Transfer-Encoding").c_str(), "chunked") != 0))
        return 400;
    constexpr std::size_t mostDigits = 9;
    return lengths == 1 && (length.size() > mostDigits || std::stoul(length) > bodyLimit) ? 413 : 0;
}

bool announcesBody(const Request& request) {
    return request.has_header("Transfer-Encoding")
           || (request.has_header("Content-Length") && request.get_header_value("Content-Length") != "0");
}

} // namespace

Server::Server(const TranslationEngine& chosen, const Options& options, const Log& events)
    : engine(chosen),
      log(events),
      limits({.perMinute = options.rate, .atOnce = options.atOnce},
             {.perMinute = options.addressRate, .atOnce = options.addressAtOnce},
             {.perMinute = options.deviceRate, .atOnce = options.deviceAtOnce}),
      certificates(options.certificate, options.names, events),
      server(certificates, static_cast<std::size_t>(options.connections), options.requestTime,
             [this](const Exchange& exchange) { report(exchange); }) {
    if (!options.appcast.empty())
        appcast.emplace(options.appcast);
    server.set_pre_routing_handler([this](const Request& request, Response& response) {
        return answerSimply(request, response) ? httplib::Server::HandlerResponse::Handled
                                               : httplib::Server::HandlerResponse::Unhandled;
    });
    const auto answering = [this](AnswerForm form) {
        return
            [this, form](const Request& request, Response& response, const httplib::ContentReader& reader) {
                translate(form, request, response, reader);
            };
    };
    server.Post(streamPath, answering(AnswerForm::stream));
    server.Post(wholePath, answering(AnswerForm::whole));
    server.set_exception_handler([](const Request&, Response& response, const std::exception_ptr&) {
        response.status = 500;
        Exchange::current().failure = "fault";
    });
    server.set_error_handler(httplib::Server::Handler(explain));
}

// Answers all but what has to be translated. The library would read any body into memory first.
bool Server::answerSimply(const Request& request, Response& response) {
    Exchange& exchange = Exchange::current();
    exchange.endpoint = endpointOf(request.path);
    const bool isTranslation = exchange.endpoint == streamPath || exchange.endpoint == wholePath;
    const bool isPost = isTranslation && request.method == "POST";
    const int fault = isPost ? faultOfBody(request) : 0;
    if (isPost && fault == 0)
        return false;
    exchange.place->worksForClient();
    exchange.hasUnreadBody = announcesBody(request);
    const bool isHead = request.method == "HEAD";
    if (fault != 0 || exchange.endpoint.empty()) {
        response.status = fault != 0 ? fault : 404;
    } else if (exchange.endpoint == wholePath || (!isHead && (request.method != "GET" || isTranslation))) {
        response.status = 405;
        response.set_header("Allow", methodsOf(exchange.endpoint));
    } else if (!answerKnown(exchange.endpoint, request, response)) {
        response.status = 404;
    }
    return true;
}

bool Server::answerKnown(const std::string& endpoint, const Request& request, Response& response) {
    if (endpoint == streamPath) { // A client's warm-up: the connection it opens carries the next request.
        response.set_content("", "text/event-stream");
    } else if (endpoint == healthPath) {
        response.set_content("ok\n", plainText);
    } else if (endpoint == metricsPath) {
        response.set_content(
            metrics.text(
                {.connections = server.openConnections(),
                 .refusedConnections = server.refusedConnections(),
                 .translations = limits.underWay(),
                 .certificateExpiry =
                     std::chrono::duration<double>(certificates.expiry().time_since_epoch()).count()}),
            metricsText);
    } else {
        return appcast
               && appcast->answer(std::string_view(request.path).substr(appcastPath.size()), response);
    }
    return true;
}

void Server::translate(AnswerForm form, const Request& request, Response& response,
                       const httplib::ContentReader& reader) {
    Exchange& exchange = Exchange::current();
    try {
        exchange.hasUnreadBody = true;
        const std::string body = readBody(reader);
        exchange.hasUnreadBody = false;
        exchange.place->worksForClient();
        auto pass = limits.admit(deviceOf(request), request.remote_addr);
        TranslationAnswer::give(
            std::make_unique<TranslationAnswer>(form, engine, std::move(pass), body, exchange), response);
    } catch (const Refusal& refusal) {
        refuse(refusal, response, exchange);
    } catch (const Abandoned& abandoned) {
        response.status = clientClosedRequest;
        exchange.fail(abandoned);
    }
}

void Server::report(const Exchange& exchange) {
    metrics.count(exchange);
    if (exchange.endpoint == healthPath || exchange.endpoint == metricsPath)
        return; // Asked every few seconds.
    const auto milliseconds = [&](Exchange::Clock::duration time) {
        return std::chrono::round<std::chrono::milliseconds>(time).count();
    };
    Log::Fields fields{{"method", exchange.method},
                       {"endpoint", exchange.endpoint},
                       {"status", exchange.status},
                       {"ms", milliseconds(Exchange::Clock::now() - exchange.start)}};
    if (exchange.untilFirstPiece) {
        fields["pieces"] = exchange.pieces;
        fields["first_piece_ms"] = milliseconds(*exchange.untilFirstPiece);
    }
    if (!exchange.failure.empty())
        fields["failure"] = exchange.failure;
    if (!exchange.failureDetail.empty())
        fields["detail"] = exchange.failureDetail;
    log.write("request", fields);
}

} // namespace lumarin::service
