#include "Acceptance/ServiceDouble.h"

#include "Support/Streams.h"

#include <nlohmann/json.hpp>

namespace tests {
namespace {

// Three pieces, none of which ends within a character.
std::vector<std::string> piecesOf(const std::string& text) {
    std::vector<std::string> pieces;
    for (std::size_t start = 0; start < text.size();) {
        auto end = std::min(text.size(), start + text.size() / 3 + 1);
        while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
            ++end;
        pieces.push_back(text.substr(start, end - start));
        start = end;
    }
    return pieces;
}

} // namespace

void ServiceDouble::serve(TLSConnection& connection) {
    while (const auto request = connection.readRequest()) {
        requested = Clock::now();
        if (!request->head.starts_with("POST /v1/translate ")) {
            connection.send(answer("200 OK", "", ""));
            continue;
        }
        std::this_thread::sleep_for(thinking.load());
        const std::string text = nlohmann::json::parse(request->body)["text"];
        connection.send(streamHead);
        for (const auto& piece : piecesOf(translationOf(text)))
            connection.send(chunk(deltaLine(piece)));
        // Before it is sent: the program may be through with it before this thread goes on.
        answered = Clock::now();
        connection.send(chunk("data: [DONE]\n\n") + streamEnd);
    }
}

} // namespace tests
