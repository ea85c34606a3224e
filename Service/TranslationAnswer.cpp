#include "Service/TranslationAnswer.h"

#include <nlohmann/json.hpp>

namespace lumarin::service {
namespace {

using namespace std::chrono_literals;

// As many as can be there at once without anybody else having to wait for them.
constexpr std::size_t manyPieces = 100;

struct FormDetails {
    const char* contentType;
    // The program gives up when it has heard nothing for 15 seconds from a stream and for 10 from the other.
    Exchange::Clock::duration patience;
    // Said instead of a piece to keep it waiting: a comment, and white space before the JSON.
    const char* keepAlive;
};

constexpr FormDetails detailsOf(AnswerForm form) {
    return form == AnswerForm::stream ? FormDetails{"text/event-stream", 12s, ": wait\n\n"}
                                      : FormDetails{"application/json", 9s, "\n"};
}

} // namespace

asio::awaitable<void> TranslationAnswer::give() {
    std::string output = co_await nextOutput();
    begin(output);
    while (true) {
        exchange.add(output);
        lastOutput = Exchange::Clock::now();
        if (isComplete)
            break;
        if (exchange.isWorthFlushing())
            co_await exchange.flush();
        output = co_await nextOutput();
    }
    exchange.end();
    // Who has the end of the answer can ask for the next translation.
    pass.reset();
    co_await exchange.leave();
    co_await translation->finish();
}

void TranslationAnswer::begin(const std::string& output) {
    Exchange::Announced what{.contentType = detailsOf(form).contentType};
    Exchange::Fields fields{{"Cache-Control", "no-cache"}};
    if (isComplete && form == AnswerForm::whole)
        what.length = output.size();
    else // Proxies that collect an answer before they pass it on do not collect this one.
        fields.emplace_back("X-Accel-Buffering", "no");
    exchange.begin(200, what, fields);
}

asio::awaitable<std::string> TranslationAnswer::nextOutput() {
    while (true) {
        const Progress progress = co_await nextProgress();
        switch (progress.kind) {
        case Progress::Kind::nothingYet:
            co_return detailsOf(form).keepAlive;
        case Progress::Kind::complete:
            isComplete = true;
            co_return form == AnswerForm::stream ? "data: [DONE]\n\n" : nlohmann::json{{"text", text}}.dump();
        case Progress::Kind::piece:
            if (exchange.pieces++ == 0)
                exchange.untilFirstPiece = Exchange::Clock::now() - exchange.start;
            else if (exchange.pieces % manyPieces == 0)
                co_await giveWay();
            if (form == AnswerForm::stream)
                co_return event(progress.piece);
            text += progress.piece;
        }
    }
}

// Pieces that are there already leave in one packet; before any wait, all that is written leaves.
asio::awaitable<Progress> TranslationAnswer::nextProgress() {
    const auto moment = lastOutput + detailsOf(form).patience;
    while (true) {
        Progress progress = translation->next();
        if (progress.kind != Progress::Kind::nothingYet || Exchange::Clock::now() >= moment)
            co_return progress;
        co_await exchange.flush();
        if (!watch)
            watch.emplace(exchange.place().socket);
        const bool hasGone = co_await watch->hasGoneBefore(translation->wait(moment));
        if (hasGone)
            throw Abandoned("The client has gone away.");
    }
}

std::string TranslationAnswer::event(const std::string& piece) {
    const nlohmann::json data = {{"choices", {{{"delta", {{"content", piece}}}}}}};
    return "data: " + data.dump() + "\n\n";
}

} // namespace lumarin::service
