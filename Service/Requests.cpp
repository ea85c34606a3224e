#include "Service/Requests.h"

#include "Service/Engine/Refusal.h"

#include <nlohmann/json.hpp>

namespace lumarin::service {
namespace {

constexpr int badRequest = 400;

nlohmann::json parseObject(std::string_view body) {
    // The parser takes nothing but well-formed UTF-8, so every string read from here on is.
    nlohmann::json parsed = nlohmann::json::parse(body, nullptr, false);
    if (!parsed.is_object())
        throw Refusal(badRequest, "The body is not a JSON object in UTF-8.");
    return parsed;
}

std::string stringMember(const nlohmann::json& object, const std::string& name) {
    const auto member = object.find(name);
    if (member == object.end())
        throw Refusal(badRequest, "The member \"" + name + "\" is missing.");
    if (!member->is_string())
        throw Refusal(badRequest, "The member \"" + name + "\" is not a string.");
    return member->get<std::string>();
}

} // namespace

TranslationRequest parseStreamRequest(std::string_view body) {
    const nlohmann::json object = parseObject(body);
    TranslationRequest request{.text = stringMember(object, "text"),
                               .systemPrompt = stringMember(object, "system_prompt"),
                               .targetLanguage = stringMember(object, "target_language")};
    if (const auto stream = object.find("stream"); stream == object.end() || *stream != true)
        throw Refusal(badRequest, "The member \"stream\" is not true.");
    return request;
}

TranslationRequest parseWholeRequest(std::string_view body) {
    const nlohmann::json object = parseObject(body);
    return {.text = stringMember(object, "text"),
            .systemPrompt = "",
            .targetLanguage = stringMember(object, "target_lang")};
}

} // namespace lumarin::service
