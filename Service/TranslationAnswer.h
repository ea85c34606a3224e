#pragma once

#include "Service/Engine/TranslationEngine.h"
#include "Service/HTTPS/ClientWatch.h"
#include "Service/HTTPS/Exchange.h"
#include "Service/Limits.h"

#include <memory>
#include <optional>
#include <string>

namespace lumarin::service {

// How the program wants a translation: as a stream of events, or in one JSON object.
enum class AnswerForm { stream, whole };

// A translation on its way from the engine to the client.
class TranslationAnswer {
public:
    TranslationAnswer(AnswerForm asked, std::unique_ptr<Translation> begun, Limits::Pass admission,
                      Exchange& of)
        : form(asked), exchange(of), pass(std::move(admission)), translation(std::move(begun)) {}

    // Waits for the beginning of the translation, so that what fails early can be answered with a status, and
    // makes all of it the answer. Throws a Refusal, and Abandoned; if the answer has begun by then, it has no
    // end.
    asio::awaitable<void> give();

private:
    void begin(const std::string& output);
    asio::awaitable<std::string> nextOutput();
    asio::awaitable<Progress> nextProgress();
    static std::string event(const std::string& piece);

    const AnswerForm form;
    Exchange& exchange;
    std::optional<Limits::Pass> pass;
    const std::unique_ptr<Translation> translation;
    std::optional<ClientWatch> watch; // Of a client that has to wait.
    std::string text;                 // Of an answer in one piece.
    Exchange::Clock::time_point lastOutput = exchange.start;
    bool isComplete = false;
};

} // namespace lumarin::service
