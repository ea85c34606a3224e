#include "Core/LLMTranslator.h"

#include "Core/Logger.h"
#include "Core/ReceivedText.h"
#include "Core/ServiceAddress.h"
#include "Core/StreamedDelta.h"
#include "Core/TranslationError.h"
#include "Core/TranslationPrompt.h"
#include "Platform/Foundation/Text.h"
#include "Platform/Host.h"

#include <nlohmann/json.hpp>

namespace lumarin {
namespace {

using namespace std::chrono_literals;
using platform::Host;
using platform::Task;

constexpr const char* path = "/v1/translate";

// Enough of an error's body for the part of it that is shown; the rest is not waited for.
constexpr std::size_t enoughOfAnError = std::size_t{64} * 1024;

Task<void> warmUp(std::shared_ptr<platform::HTTPSession> session) {
    try {
        platform::HTTPRequest request;
        request.url = serviceURL(path);
        request.method = "HEAD";
        auto answer = co_await session->bytes(std::move(request));
        co_await answer.readAll();
    } catch (const std::exception&) {
        // The first translation will say what is wrong.
    }
    LumLog::log("[LLM] Connection pre-warmed");
}

Task<TranslationError> serviceError(platform::HTTPAnswer& answer) {
    std::string body;
    try {
        // Not by lines: one that never ends would take with it what has come of it.
        while (body.size() < enoughOfAnError) {
            auto piece = co_await answer.nextPiece();
            if (!piece)
                break;
            body += *piece;
        }
    } catch (const platform::HTTPError&) {
        // The status says more than why the rest of its text has not come.
    }
    body = platform::text::withoutControls(platform::text::repaired(body));
    std::erase_if(body, [](char character) { return character == '\r' || character == '\n'; });
    co_return TranslationError::apiError("HTTP " + std::to_string(*answer.response.status) + ": "
                                         + platform::text::prefix(body, 200));
}

} // namespace

LLMTranslator::LLMTranslator()
    : session(Host::current().makeHTTPSession({.maximumConnectionsPerHost = 2, .timeoutForRequest = 15s})) {}

void LLMTranslator::warmup() {
    spawn(Host::current().backgroundExecutor(), warmUp(session));
}

Task<std::string> LLMTranslator::translateStream(std::string text, StylePreset style,
                                                 TargetLanguage targetLanguage, ChunkHandler onChunk) {
    co_await platform::resumeOn(Host::current().backgroundExecutor());
    auto terms = terminologyDB.findRelevantTerms(text);
    nlohmann::json body;
    body["text"] = text;
    body["system_prompt"] = buildSystemPrompt(style, terms, targetLanguage);
    body["target_language"] = code(targetLanguage);
    body["style"] = rawValue(style);
    body["stream"] = true;
    platform::HTTPRequest request;
    request.url = serviceURL(path);
    request.method = "POST";
    request.headers = serviceHeaders();
    request.body = body.dump();
    request.timeout = 15s;

    auto answer = co_await session->bytes(std::move(request));
    if (!answer.response.status)
        throw TranslationError::networkError("Invalid response");
    if (answer.response.status != 200) {
        auto error = co_await serviceError(answer);
        throw error;
    }
    std::string translation;
    while (auto line = co_await answer.nextLine()) {
        co_await platform::checkCancellation();
        auto payload = dataPayload(*line);
        if (!payload)
            continue;
        if (payload == "[DONE]")
            break;
        if (auto content = deltaContent(*payload)) {
            appendReceived(translation, *content);
            onChunk(translation);
        }
    }
    if (translation.empty())
        throw TranslationError(TranslationError::Case::emptyResponse);
    co_return platform::text::trimmed(translation);
}

} // namespace lumarin
