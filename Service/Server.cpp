#include "Service/Server.h"

#include "Service/Engine/Refusal.h"
#include "Service/HTTPS/RequestReader.h"
#include "Service/Requests.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <strings.h>
#include <unistd.h>
#include <vector>

namespace lumarin::service {
namespace {

constexpr const char* streamPath = "/v1/translate";
constexpr const char* wholePath = "/v1/free";
constexpr const char* healthPath = "/healthz";
constexpr const char* metricsPath = "/metrics";
constexpr std::string_view appcastPath = "/appcast/";
constexpr std::size_t longestDeviceName = 128;
constexpr std::size_t readInAMoment = std::size_t{16} * 1024;
constexpr int clientClosedRequest = 499; // As other servers log it; nobody is there to read it.

constexpr const char* plainText = "text/plain; charset=utf-8";
constexpr const char* metricsText = "text/plain; version=0.0.4; charset=utf-8";

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

void refuse(const Refusal& refusal, Exchange& exchange) {
    exchange.failure = refusal.cause;
    exchange.failureDetail = refusal.cause.empty() ? "" : refusal.what();
    if (exchange.hasBegun())
        return;
    std::string sentence = refusal.what();
    if (!refusal.quotation.empty())
        sentence += " It says: " + refusal.quotation;
    Exchange::Fields fields;
    if (refusal.retryAfter)
        fields.emplace_back("Retry-After", std::to_string(refusal.retryAfter->count()));
    if (refusal.status == Tokens::unauthorized)
        fields.emplace_back("WWW-Authenticate", "Bearer");
    exchange.refuse(refusal.status, sentence, fields);
}

// By what a request is counted where it has no token.
std::string deviceOf(const Exchange& exchange) {
    const std::string name = exchange.request().value("X-Device-ID");
    // Whoever takes somebody else's name from elsewhere takes none of their share.
    return "device " + exchange.place().address + " " + name.substr(0, longestDeviceName);
}

// What is wrong with the announcement of a request's body, as a status; zero if nothing is. One that could be
// read in two ways would let a request hide in another's body.
int faultOfBody(const Request& request) {
    const auto lengths = request.count("Content-Length");
    const auto encodings = request.count("Transfer-Encoding");
    if (lengths + encodings == 0)
        return 411;
    const std::string length = request.value("Content-Length");
    const bool isNumber =
        !length.empty() && std::ranges::all_of(length, [](unsigned char c) { return std::isdigit(c) != 0; });
    if (lengths + encodings > 1 || (lengths == 1 && !isNumber)
        || (encodings == 1 && ::strcasecmp(request.value("Transfer-Encoding").c_str(), "chunked") != 0))
        return 400;
    // No web page can say this without asking first, which nobody here answers.
    const std::string type = request.value("Content-Type");
    const bool isJson =
        ::strcasecmp(type.substr(0, type.find_first_of("; \t")).c_str(), "application/json") == 0;
    if (request.count("Content-Type") > 0 && !isJson)
        return 415;
    return lengths == 1 && std::stoull(length) > RequestReader::longestBody ? 413 : 0;
}

// Whether a page of somebody else's makes a browser ask, at the expense of whoever pays for the model.
bool isFromForeignPage(const Request& request) {
    return request.count("Origin") > 0 && request.value("Origin") != "https://" + request.value("Host");
}

TranslationRequest parse(AnswerForm form, const std::string& body) {
    return form == AnswerForm::stream ? parseStreamRequest(body) : parseWholeRequest(body);
}

} // namespace

Server::Server(const TranslationEngine& chosen, const Options& options, const Log& events)
    : engine(chosen),
      hasFixedPrompt(options.hasFixedPrompt),
      log(events),
      limits({.perMinute = options.rate, .atOnce = options.atOnce},
             {.perMinute = options.addressRate, .atOnce = options.addressAtOnce},
             {.perMinute = options.deviceRate, .atOnce = options.deviceAtOnce}),
      certificates(options.certificate, options.names, events),
      server(
          certificates, static_cast<std::size_t>(options.connections), options.requestTime,
          [this](Exchange& exchange) { return answer(exchange); },
          [this](const Exchange& exchange) { report(exchange); }) {
    if (!options.appcast.empty())
        appcast.emplace(options.appcast);
    if (!options.tokens.empty())
        tokens.emplace(options.tokens, events);
}

asio::awaitable<void> Server::answer(Exchange& exchange) {
    const Request& request = exchange.request();
    exchange.endpoint = endpointOf(request.path);
    const bool isTranslation = exchange.endpoint == streamPath || exchange.endpoint == wholePath;
    const bool isPost = isTranslation && request.method == "POST";
    const bool hasBody = request.announcesBody() && (request.method == "GET" || request.method == "HEAD");
    const int fault = isFromForeignPage(request) ? 403 : isPost ? faultOfBody(request) : hasBody ? 400 : 0;
    try {
        if (isPost && fault == 0) {
            co_await translate(exchange.endpoint == streamPath ? AnswerForm::stream : AnswerForm::whole,
                               exchange);
            co_return;
        }
        exchange.place().worksForClient();
        const bool isHead = request.method == "HEAD";
        if (fault != 0 || exchange.endpoint.empty())
            exchange.refuse(fault != 0 ? fault : 404);
        else if (exchange.endpoint == wholePath || (!isHead && (request.method != "GET" || isTranslation)))
            exchange.refuse(405, "", {{"Allow", methodsOf(exchange.endpoint)}});
        else
            co_await answerKnown(exchange);
    } catch (const Refusal& refusal) {
        refuse(refusal, exchange);
    } catch (const Abandoned& abandoned) {
        if (!exchange.hasBegun())
            exchange.status = clientClosedRequest;
        exchange.fail(abandoned);
    } catch (const std::exception& error) {
        exchange.failure = "fault";
        exchange.failureDetail = error.what();
        if (!exchange.hasBegun())
            exchange.refuse(500);
    }
}

asio::awaitable<void> Server::answerKnown(Exchange& exchange) {
    if (exchange.endpoint == streamPath) { // A client's warm-up: the connection carries the next request.
        exchange.answer(200, "text/event-stream", "");
    } else if (exchange.endpoint == healthPath) {
        exchange.answer(200, plainText, "ok\n");
    } else if (exchange.endpoint == metricsPath) {
        exchange.answer(
            200, metricsText,
            metrics.text({.connections = server.openConnections(),
                          .refusedConnections = server.refusedConnections(),
                          .translations = limits.underWay(),
                          .certificateExpiry =
                              std::chrono::duration<double>(certificates.expiry().time_since_epoch()).count(),
                          .upstreams = engine.health()}));
    } else {
        const auto path = std::string_view(exchange.request().path).substr(appcastPath.size());
        if (const auto file = appcast ? appcast->find(path) : std::nullopt)
            co_await send(*file, exchange);
        else
            exchange.refuse(404);
    }
}

asio::awaitable<void> Server::send(const FileFolder::File& file, Exchange& exchange) {
    const Exchange::Fields fields{
        {"Cache-Control", "no-cache"}, {"Accept-Ranges", "none"}, {"X-Content-Type-Options", "nosniff"}};
    exchange.begin(200, {.contentType = file.contentType, .length = file.size}, fields);
    std::vector<char> part(65536);
    std::size_t left = exchange.request().method == "HEAD" ? 0 : file.size;
    while (left > 0) {
        const auto position = static_cast<off_t>(file.size - left);
        ssize_t count = 0;
        co_await inBackground(server.pool(), [&] {
            count = ::pread(file.opened.number(), part.data(), std::min(left, part.size()), position);
        });
        if (count <= 0)
            co_return; // The file has become shorter.
        exchange.add({part.data(), static_cast<std::size_t>(count)});
        left -= static_cast<std::size_t>(count);
        co_await exchange.flush();
    }
    exchange.end();
}

asio::awaitable<void> Server::translate(AnswerForm form, Exchange& exchange) {
    // Before anything is read of what a stranger sends.
    const std::string user =
        tokens ? "client " + tokens->client(exchange.request().value("Authorization")) : deviceOf(exchange);
    const std::string body = co_await exchange.body();
    auto pass = limits.admit(user, exchange.place().address);
    TranslationRequest wanted;
    if (body.size() <= readInAMoment)
        wanted = parse(form, body);
    else
        co_await inBackground(server.pool(), [&] { wanted = parse(form, body); });
    if (hasFixedPrompt)
        wanted.systemPrompt.clear();
    TranslationAnswer answer(form, engine.begin(wanted, exchange.deadline), std::move(pass), exchange);
    co_await answer.give();
}

void Server::report(const Exchange& exchange) {
    metrics.count(exchange);
    if (exchange.endpoint == healthPath || exchange.endpoint == metricsPath)
        return; // Asked every few seconds.
    const auto milliseconds = [&](Exchange::Clock::duration time) {
        return std::chrono::round<std::chrono::milliseconds>(time).count();
    };
    Log::Fields fields{{"method", exchange.request().method},
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
