#include "Service/TranslationAnswer.h"

#include "Service/Engine/Refusal.h"
#include "Service/HTTPS/TLSStream.h"
#include "Service/Requests.h"

#include <nlohmann/json.hpp>

namespace lumarin::service {
namespace {

using namespace std::chrono_literals;
using Clock = Exchange::Clock;

struct FormDetails {
    const char* contentType;
    // The program gives up when it has heard nothing for 15 seconds from a stream and for 10 from the other.
    Clock::duration patience;
    // Said instead of a piece to keep it waiting: a comment, and white space before the JSON.
    const char* keepAlive;
};

constexpr FormDetails detailsOf(AnswerForm form) {
    return form == AnswerForm::stream ? FormDetails{"text/event-stream", 12s, ": wait\n\n"}
                                      : FormDetails{"application/json", 9s, "\n"};
}

TranslationRequest parse(AnswerForm form, const std::string& body) {
    return form == AnswerForm::stream ? parseStreamRequest(body) : parseWholeRequest(body);
}

} // namespace

TranslationAnswer::TranslationAnswer(AnswerForm asked, const TranslationEngine& engine,
                                     Limits::Pass admission, const std::string& body, Exchange& of)
    : form(asked),
      exchange(of),
      pass(std::move(admission)),
      translation(engine.begin(
          parse(asked, body),
          {.socket = of.socket, .abandon = of.signals->abandon.descriptor(), .deadline = of.deadline})),
      lastOutput(of.start) {}

void TranslationAnswer::give(std::unique_ptr<TranslationAnswer> answer, httplib::Response& response) {
    answer->pending = answer->nextOutput();
    const char* type = detailsOf(answer->form).contentType;
    response.set_header("Cache-Control", "no-cache");
    const std::shared_ptr<TranslationAnswer> kept = std::move(answer);
    kept->exchange.kept = kept;
    if (kept->isComplete && kept->form == AnswerForm::whole) {
        response.set_content(kept->pending, type);
        return;
    }
    // Proxies that collect an answer before they pass it on do not collect this one.
    response.set_header("X-Accel-Buffering", "no");
    const auto provider = [kept](std::size_t, httplib::DataSink& sink) { return kept->send(sink); };
    if (kept->exchange.isOldHTTP)
        response.set_content_provider(type, provider);
    else
        response.set_chunked_content_provider(type, provider);
}

// Sends what comes next. False ends the connection, so that a translation that was lost cannot be taken for a
// complete one.
bool TranslationAnswer::send(httplib::DataSink& sink) {
    try {
        const std::string output = pending.empty() ? nextOutput() : std::exchange(pending, {});
        lastOutput = Clock::now();
        if (!sink.write(output.data(), output.size()))
            throw Abandoned("The client takes nothing.");
        if (isComplete)
            sink.done();
        return true;
    } catch (const Refusal& refusal) {
        exchange.failure = refusal.cause;
        exchange.failureDetail = refusal.what();
    } catch (const Abandoned& abandoned) {
        exchange.fail(abandoned);
    } catch (const std::exception&) {
        exchange.failure = "fault";
    }
    return false;
}

std::string TranslationAnswer::nextOutput() {
    while (true) {
        Progress progress = nextProgress();
        switch (progress.kind) {
        case Progress::Kind::nothingYet:
            return detailsOf(form).keepAlive;
        case Progress::Kind::complete:
            isComplete = true;
            return form == AnswerForm::stream ? "data: [DONE]\n\n" : nlohmann::json{{"text", text}}.dump();
        case Progress::Kind::piece:
            if (exchange.pieces++ == 0)
                exchange.untilFirstPiece = Clock::now() - exchange.start;
            if (form == AnswerForm::stream)
                return event(progress.piece);
            text += progress.piece;
        }
    }
}

// Pieces that are there already leave in one packet; before any wait, all that is written leaves.
Progress TranslationAnswer::nextProgress() {
    Progress progress = translation->next(Clock::time_point::min());
    if (progress.kind != Progress::Kind::nothingYet)
        return progress;
    if (!exchange.stream->flush())
        throw Abandoned("The client takes nothing.");
    return translation->next(lastOutput + detailsOf(form).patience);
}

std::string TranslationAnswer::event(const std::string& piece) const {
    nlohmann::json data = {{"choices", {{{"delta", {{"content", piece}}}}}}};
    return "data: " + data.dump() + "\n\n";
}

} // namespace lumarin::service
