#include "Service/Requests.h"

#include "Platform/Foundation/Json.h"
#include "Service/Engine/Refusal.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

namespace lumarin::service {
namespace {

constexpr int badRequest = 400;

nlohmann::json parseObject(std::string_view body) {
    using nlohmann::json;
    if (platform::isTooDeep(body))
        throw Refusal(badRequest, "The body is nested too deep.");
    // What is not asked for is not kept: a tree of small values takes many times the room of its text.
    const auto isOfUse = [](int depth, json::parse_event_t event, const json& value) {
        constexpr auto names = std::to_array<std::string_view>(
            {"text", "system_prompt", "target_language", "stream", "target_lang"});
        switch (event) {
        case json::parse_event_t::key:
            return depth == 1 && std::ranges::find(names, value.get_ref<const std::string&>()) != names.end();
        case json::parse_event_t::object_start:
            return depth == 0;
        case json::parse_event_t::array_start:
            return false;
        default:
            return true;
        }
    };
    // The parser takes nothing but well-formed UTF-8, so every string read from here on is.
    json parsed = json::parse(body, isOfUse, false);
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
