#pragma once

#include "Service/Engine/TranslationEngine.h"
#include "Service/HTTPS/Connections.h"
#include "Service/HTTPS/Request.h"
#include "Service/HTTPS/TLSStream.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lumarin::service {

class RequestReader;

// A request and its answer, and what is to be known of both when they are over.
class Exchange {
public:
    using Clock = std::chrono::steady_clock;
    using Fields = std::vector<std::pair<std::string, std::string>>;
    using Report = std::function<void(const Exchange&)>;
    struct Announced {
        const char* contentType;
        std::optional<std::size_t> length = {}; // Where it is known.
    };

    // All that is handed in outlives the exchange. `reader` has read the head. The answer has to be complete
    // by `latest`; with `last` no other exchange follows on the connection. `report` is called before the end
    // of the answer leaves, so that whoever has it finds it counted.
    Exchange(RequestReader& reader, TLSStream& client, Connections::Place& where, Clock::time_point latest,
             bool last, const Report& report);

    const Request& request() const;
    Connections::Place& place() const { return seat; }

    // Reads the body. Throws a Refusal, and Abandoned when it does not arrive whole.
    asio::awaitable<std::string> body();

    // Writes a whole answer. A refusal without a sentence of its own gets the usual one for its status.
    void answer(int code, const char* contentType, std::string_view content, const Fields& fields = {});
    void refuse(int code, const std::string& sentence = {}, const Fields& fields = {});

    // Writes an answer bit by bit. One that is not ended is broken off with its connection.
    void begin(int code, const Announced& what, const Fields& fields);
    void add(std::string_view bytes);
    void end();
    bool hasBegun() const { return status != 0; }
    // Whether so much has been written that it had better leave.
    bool isWorthFlushing() const { return stream.isWorthFlushing(); }
    // Throws Abandoned when the client does not take what has been written.
    asio::awaitable<void> flush();
    // Reports, once, and lets all that has been written leave. Whether a next request can be awaited.
    asio::awaitable<bool> leave();

    // Notes why the answer is of no more use.
    void fail(const Abandoned& abandoned);

    const Clock::time_point start = Clock::now();
    const Clock::time_point deadline;
    std::string endpoint; // Of the service's own; empty for any other.
    int status = 0;       // Zero until an answer has begun.
    bool hasUnreadBody;
    // Of a translation.
    std::size_t pieces = 0;
    std::optional<Clock::duration> untilFirstPiece;
    // Why it failed, in a word and in a sentence without anything of the text or the key; empty if it did
    // not.
    std::string failure;
    std::string failureDetail;

private:
    RequestReader& read;
    TLSStream& stream;
    Connections::Place& seat;
    const bool isLast;
    const Report& ended;
    bool isChunked = false;
    bool isComplete = false;
    bool closes = false;
    bool hasLeft = false;
};

} // namespace lumarin::service
