#include "Service/Upstream/UpstreamError.h"

#include "Platform/Foundation/Text.h"
#include "Service/Upstream/EventData.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace lumarin::service {
namespace {

using nlohmann::json;

constexpr std::size_t longestQuotation = 200; // In characters.

// Null if there is none.
json member(const json& object, const char* name) {
    const auto found = object.is_object() ? object.find(name) : object.end();
    return found != object.end() ? *found : json();
}

// Some servers quote in their words the key they were given, or whose it is: that is not for everybody.
std::string withoutSecrets(std::string_view text) {
    constexpr auto beginnings = std::to_array<std::string_view>({"sk-", "org-", "proj-", "proj_", "key-"});
    const auto isOfWord = [](unsigned char c) {
        return std::isalnum(c) != 0 || c == '-' || c == '_' || c == '*';
    };
    std::string result;
    while (!text.empty()) {
        const auto end = std::ranges::find_if_not(text, isOfWord);
        const auto word = text.substr(0, static_cast<std::size_t>(end - text.begin()));
        const bool isSecret =
            std::ranges::any_of(beginnings, [&](auto beginning) { return word.starts_with(beginning); });
        result += isSecret ? "…" : word;
        text.remove_prefix(word.size());
        if (!text.empty())
            result += text.front();
        text.remove_prefix(std::min<std::size_t>(text.size(), 1));
    }
    return result;
}

std::string string(const json& value) {
    return value.is_string()
               ? platform::text::prefix(withoutSecrets(value.get<std::string>()), longestQuotation)
               : "";
}

std::string lowerCase(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

} // namespace

UpstreamError UpstreamError::in(std::string_view said) {
    return in(parseEventData(said));
}

UpstreamError UpstreamError::in(const json& said) {
    const json error = member(said, "error");
    const json& holder = error.is_object() ? error : said;
    const json detail = member(holder, "detail");
    const json first = detail.is_array() && !detail.empty() ? member(detail.front(), "msg") : json();
    UpstreamError result{.message = "", .code = string(member(holder, "code"))};
    for (const json& candidate : {member(holder, "message"), error, detail, first})
        if (result.message.empty())
            result.message = string(candidate);
    return result;
}

bool UpstreamError::isAboutUnknownModel(int status) const {
    constexpr int badRequest = 400;
    constexpr int notFound = 404;
    constexpr auto unknown =
        std::to_array<std::string_view>({"not exist", "not found", "unknown model", "invalid model"});
    if (code == "model_not_found")
        return true;
    const std::string text = lowerCase(message);
    const auto says = [&](std::string_view words) { return text.find(words) != std::string::npos; };
    // A bad request that names the model may be about its size.
    return says("model")
           && (status == notFound || (status == badRequest && std::ranges::any_of(unknown, says)));
}

bool isError(const json& said) {
    return !member(said, "error").is_null() || member(said, "object") == "error";
}

} // namespace lumarin::service
