#include "Core/StreamedDelta.h"

#include "Platform/Foundation/Json.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace lumarin {

std::optional<std::string_view> dataPayload(std::string_view line) {
    constexpr std::string_view prefix = "data: ";
    if (!line.starts_with(prefix))
        return std::nullopt;
    return line.substr(prefix.size());
}

std::optional<std::string> deltaContent(std::string_view payload) {
    // The library takes a zero byte for the end of the text, and would not see what follows.
    if (payload.find('\0') != std::string_view::npos || platform::isTooDeep(payload))
        return std::nullopt;
    auto event = nlohmann::json::parse(payload, nullptr, false);
    if (!event.is_object() || !event.contains("choices"))
        return std::nullopt;
    const auto& choices = event["choices"];
    bool areObjects = choices.is_array()
                      && std::ranges::all_of(choices, [](const auto& choice) { return choice.is_object(); });
    if (!areObjects || choices.empty() || !choices[0].contains("delta"))
        return std::nullopt;
    const auto& delta = choices[0]["delta"];
    if (!delta.is_object() || !delta.contains("content") || !delta["content"].is_string())
        return std::nullopt;
    return delta["content"].get<std::string>();
}

} // namespace lumarin
