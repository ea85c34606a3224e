#include "Platform/Foundation/HTTPSession.h"

namespace platform {

Task<HTTPAnswer> HTTPSession::bytes(HTTPRequest request) {
    const auto maximumBodyLength = request.maximumBodyLength;
    auto exchange = open(std::move(request));
    auto events = exchange->events;
    auto head = co_await events->next();
    if (!head)
        throw HTTPError("The server closed the connection without a response.");
    co_return HTTPAnswer(std::get<HTTPResponse>(*head), std::move(exchange), maximumBodyLength);
}

Task<std::optional<std::string>> HTTPAnswer::nextLine() {
    for (;;) {
        if (auto line = nextCompleteLine())
            co_return line;
        auto piece = co_await nextPiece();
        if (!piece) {
            lines.finish();
            co_return nextCompleteLine();
        }
        lines.append(*piece);
    }
}

std::optional<std::string> HTTPAnswer::nextCompleteLine() {
    try {
        return lines.next();
    } catch (const std::length_error& error) {
        throw HTTPError(error.what());
    }
}

Task<std::string> HTTPAnswer::readAll() {
    std::string body;
    while (auto piece = co_await nextPiece())
        body += *piece;
    co_return body;
}

Task<std::optional<std::string>> HTTPAnswer::nextPiece() {
    auto event = co_await exchange->events->next();
    if (!event)
        co_return std::nullopt;
    auto& piece = std::get<std::string>(*event);
    received += piece.size();
    if (received > maximumBodyLength)
        throw HTTPError("The server’s response is too long.");
    co_return std::move(piece);
}

} // namespace platform
