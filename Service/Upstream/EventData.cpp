#include "Service/Upstream/EventData.h"

#include "Platform/Foundation/Json.h"
#include "Platform/Foundation/Text.h"

#include <charconv>
#include <string>

namespace lumarin::service {
namespace {

namespace text = platform::text;

constexpr std::size_t escapeLength = 6; // As in \u12ab.

// The UTF-16 unit of the escape that the text begins with; 0 if it does not.
char32_t escapedUnit(std::string_view rest) {
    std::uint32_t unit = 0;
    if (rest.size() >= escapeLength && rest.starts_with("\\u"))
        std::from_chars(rest.data() + 2, rest.data() + escapeLength, unit, 16);
    return unit;
}

std::string withoutHalves(std::string_view payload) {
    std::string whole;
    while (!payload.empty()) {
        const char32_t unit = escapedUnit(payload);
        const bool isPair =
            text::isHighSurrogate(unit) && text::isLowSurrogate(escapedUnit(payload.substr(escapeLength)));
        const bool isHalf = !isPair && (text::isHighSurrogate(unit) || text::isLowSurrogate(unit));
        // Of any other escape the second character belongs to it.
        const std::size_t length = isPair               ? 2 * escapeLength
                                   : isHalf             ? escapeLength
                                   : payload[0] == '\\' ? 2
                                                        : 1;
        whole += isHalf ? "\\ufffd" : payload.substr(0, length);
        payload.remove_prefix(std::min(length, payload.size()));
    }
    return whole;
}

} // namespace

nlohmann::json parseEventData(std::string_view data) {
    if (platform::isTooDeep(data))
        return nlohmann::json::value_t::discarded;
    const auto parsed = nlohmann::json::parse(data, nullptr, false);
    return parsed.is_discarded() ? nlohmann::json::parse(withoutHalves(data), nullptr, false) : parsed;
}

} // namespace lumarin::service
