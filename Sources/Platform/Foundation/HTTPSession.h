#pragma once

#include "Platform/Foundation/Channel.h"
#include "Platform/Foundation/HTTPError.h"
#include "Platform/Foundation/LineSplitter.h"

#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace platform {

struct HTTPRequest {
    std::string url;
    std::string method = "GET";
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;
    // The longest time without a byte in either direction; the session's own, where that is shorter.
    Duration timeout = std::chrono::seconds(60);
    // The longest body of an answer, in bytes.
    std::size_t maximumBodyLength = std::size_t{64} * 1024 * 1024;
};

struct HTTPSessionConfiguration {
    int maximumConnectionsPerHost = 6;
    Duration timeoutForRequest = std::chrono::seconds(60);
};

// The head of an answer. An answer that is no HTTP has no status.
struct HTTPResponse {
    std::optional<int> status;
};

// What arrives of an answer: its head, then the pieces of its body.
using HTTPEvents = Channel<std::variant<HTTPResponse, std::string>>;

// A transfer under way, from the side of its reader. Dropping it closes the transfer at once.
class HTTPExchange {
public:
    explicit HTTPExchange(std::shared_ptr<HTTPEvents> source) : events(std::move(source)) {}
    virtual ~HTTPExchange() = default;
    HTTPExchange(const HTTPExchange&) = delete;
    HTTPExchange& operator=(const HTTPExchange&) = delete;

    const std::shared_ptr<HTTPEvents> events;
};

// An answer whose body is still arriving. To be read by one task; each operation throws an HTTPError when the
// transfer fails or the answer is longer than the request allows, and a CancellationError when the task is
// cancelled.
class HTTPAnswer {
public:
    HTTPAnswer(HTTPResponse head, std::unique_ptr<HTTPExchange> transfer, std::size_t maximumLength)
        : response(head), exchange(std::move(transfer)), maximumBodyLength(maximumLength) {}

    const HTTPResponse response;

    // The next line of the body without its end, as soon as it is complete; nothing at the end of the body.
    Task<std::optional<std::string>> nextLine();

    // All of the body that has not been read.
    Task<std::string> readAll();

    // The bytes that arrived next; nothing at the end of the body.
    Task<std::optional<std::string>> nextPiece();

private:
    std::optional<std::string> nextCompleteLine();

    std::unique_ptr<HTTPExchange> exchange;
    std::size_t maximumBodyLength;
    LineSplitter lines;
    std::size_t received = 0;
};

// Makes requests on connections that it keeps for the next ones. Any thread. TLS is verified always; plain
// HTTP is refused except to the loopback.
class HTTPSession {
public:
    virtual ~HTTPSession() = default;

    // Gives the answer once its head is there. Throws HTTPError or CancellationError.
    Task<HTTPAnswer> bytes(HTTPRequest request);

    // Starts the transfer. What fails, fails in the exchange's events, with an HTTPError.
    virtual std::unique_ptr<HTTPExchange> open(HTTPRequest request) = 0;
};

} // namespace platform
