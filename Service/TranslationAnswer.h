#pragma once

#include "Service/Engine/TranslationEngine.h"
#include "Service/HTTPS/Exchange.h"
#include "Service/Limits.h"

#include <httplib.h>
#include <memory>
#include <string>

namespace lumarin::service {

// How the program wants a translation: as a stream of events, or in one JSON object.
enum class AnswerForm { stream, whole };

// A translation on its way from the engine to the client. Lives on the connection's thread.
class TranslationAnswer {
public:
    // Begins the translation that the exchange's request asks for in `body`. Throws a Refusal.
    TranslationAnswer(AnswerForm asked, const TranslationEngine& engine, Limits::Pass admission,
                      const std::string& body, Exchange& of);

    // Waits for the beginning of the translation, so that what fails early is answered with a status, and
    // makes it the response. Throws a Refusal, and Abandoned.
    static void give(std::unique_ptr<TranslationAnswer> answer, httplib::Response& response);

private:
    bool send(httplib::DataSink& sink);
    std::string nextOutput();
    Progress nextProgress();
    std::string event(const std::string& piece) const;

    const AnswerForm form;
    Exchange& exchange;
    const Limits::Pass pass;
    const std::unique_ptr<Translation> translation;
    std::string text;    // Of an answer in one piece.
    std::string pending; // Output that has been waited for but not sent.
    Exchange::Clock::time_point lastOutput;
    bool isComplete = false;
};

} // namespace lumarin::service
