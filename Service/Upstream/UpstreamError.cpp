#include "Service/Upstream/UpstreamError.h"

#include "Platform/Foundation/Text.h"

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

std::string string(const json& value) {
    return value.is_string() ? platform::text::prefix(value.get<std::string>(), longestQuotation) : "";
}

std::string lowerCase(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

} // namespace

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
