#include "Service/UpstreamCheck.h"

#include "Service/Engine/Refusal.h"
#include "Service/Support/Async.h"

#include <algorithm>
#include <array>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <exception>
#include <string>
#include <string_view>

namespace lumarin::service {
namespace {

using Clock = Translation::Clock;

struct Advice {
    std::string_view cause;
    std::string_view sentence;
};

// What to do about each cause of a refusal.
constexpr auto advices = std::to_array<Advice>({
    {"no upstream", "Is the model server running, and at the address and port of --upstream?"},
    {"untrusted", "Name the authority that has signed its certificate by --upstream-authority FILE."},
    {"no endpoint", "Give --upstream the server's base address, which often ends in /v1."},
    {"refused key", "Put the right key into the file of --key-file, alone on a line."},
    {"unknown model", "Name one that it has by --model NAME; GET /models at its address lists them."},
    {"time-out", "If it has to load the model first, give it more time with --timeout SECONDS."},
    {"senseless answer",
     "Give --upstream a server that offers /chat/completions, with the path before that."},
    {"upstream rate", "Try again later, or ask whoever runs it for more."},
    {"upstream error", "Its own log should say more."},
    {"refused request", "Its words above should say why; --model and --parameters are what you can change."},
    {"broken off", "Switch the model's reasoning off by --parameters, or choose another with --model."},
    {"lost", "Its own log should say more."},
});

std::string milliseconds(Clock::duration time) {
    return std::to_string(std::chrono::round<std::chrono::milliseconds>(time).count()) + " ms";
}

struct Outcome {
    std::string text;
    Clock::duration untilFirstPiece{};
    Clock::duration untilEnd{};
};

asio::awaitable<Outcome> translate(const TranslationEngine& engine, Clock::time_point deadline) {
    const auto start = Clock::now();
    const TranslationRequest request{
        .text = "您好，请问样品的报价是多少？", .systemPrompt = "", .targetLanguage = "EN"};
    const auto translation = engine.begin(request, deadline);
    Outcome outcome;
    while (true) {
        Progress progress = translation->next();
        if (progress.kind == Progress::Kind::complete)
            break;
        if (progress.kind == Progress::Kind::nothingYet)
            co_await translation->wait(deadline);
        else if (outcome.text.empty())
            outcome.untilFirstPiece = Clock::now() - start;
        outcome.text += progress.piece;
    }
    outcome.untilEnd = Clock::now() - start;
    if (outcome.text.find_first_not_of(" \t\r\n") == std::string::npos)
        throw Refusal(0, "The model server gave an empty translation.", "broken off");
    co_return outcome;
}

void explain(const Refusal& refusal, std::ostream& out) {
    out << refusal.what() << (refusal.quotation.empty() ? "" : " It says: " + refusal.quotation) << "\n";
    const auto advice = std::ranges::find(advices, refusal.cause, &Advice::cause);
    if (advice != advices.end())
        out << advice->sentence << "\n";
}

} // namespace

bool checkUpstream(const TranslationEngine& engine, std::chrono::seconds patience, std::ostream& out) {
    asio::io_context loop{1};
    bool isWell = false;
    const auto finish = [&](const std::exception_ptr& failure, const Outcome& outcome) {
        try {
            if (failure)
                std::rethrow_exception(failure);
            out << "It works: " << outcome.text << "\nFirst piece after "
                << milliseconds(outcome.untilFirstPiece) << ", all after " << milliseconds(outcome.untilEnd)
                << ".\n";
            isWell = true;
        } catch (const Refusal& refusal) {
            explain(refusal, out);
        }
    };
    asio::co_spawn(loop, translate(engine, Clock::now() + patience), finish);
    loop.run();
    return isWell;
}

} // namespace lumarin::service
