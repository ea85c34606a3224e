#include "Core/FreeTranslator.h"

#include "Core/ReceivedText.h"
#include "Core/ServiceAddress.h"
#include "Core/TranslationError.h"
#include "Platform/Foundation/Json.h"
#include "Platform/Foundation/Text.h"
#include "Platform/Host.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace lumarin {

using namespace std::chrono_literals;
using platform::Host;

namespace {

// JSON may write each byte of the translation in six.
constexpr std::size_t longestAnswer = 6 * maximumTranslation + 4096;

} // namespace

FreeTranslator::FreeTranslator() : session(Host::current().makeHTTPSession({.timeoutForRequest = 10s})) {}

platform::Task<std::string> FreeTranslator::translate(std::string text, TargetLanguage to) {
    co_await platform::resumeOn(Host::current().backgroundExecutor());
    nlohmann::json body;
    body["text"] = text;
    body["source_lang"] = "ZH";
    body["target_lang"] = code(to);
    platform::HTTPRequest request;
    request.url = serviceURL("/v1/free");
    request.method = "POST";
    request.headers = serviceHeaders();
    request.body = body.dump();
    request.maximumBodyLength = longestAnswer;

    auto answer = co_await session->bytes(std::move(request));
    auto bytes = co_await answer.readAll();
    if (answer.response.status != 200) {
        auto message =
            platform::text::isValid(bytes) ? platform::text::withoutControls(bytes) : "Unknown error";
        throw TranslationError::apiError(platform::text::prefix(message, 100));
    }
    if (platform::isTooDeep(bytes))
        throw platform::HTTPError("The server’s response could not be read.");
    // The library takes a zero byte for the end of the text, but refuses any other control character.
    std::ranges::replace(bytes, '\0', '\x01');
    auto result = nlohmann::json::parse(bytes);
    if (!result.is_object() || !result.contains("text") || !result["text"].is_string())
        throw TranslationError(TranslationError::Case::emptyResponse);
    std::string translation;
    appendReceived(translation, result["text"].get_ref<const std::string&>());
    if (translation.empty())
        throw TranslationError(TranslationError::Case::emptyResponse);
    co_return translation;
}

} // namespace lumarin
