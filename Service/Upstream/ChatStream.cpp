#include "Service/Upstream/ChatStream.h"

#include "Platform/Foundation/Text.h"
#include "Service/Upstream/EventData.h"
#include "Service/Upstream/UpstreamRefusals.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace lumarin::service {
namespace {

using nlohmann::json;

constexpr std::size_t enoughOfAnError = std::size_t{64} * 1024;

// The first object of an array member, or nothing.
const json* first(const json& object, const char* name) {
    const auto member = object.find(name);
    if (member == object.end() || !member->is_array() || member->empty() || !member->front().is_object())
        return nullptr;
    return &member->front();
}

std::string stringMember(const json& object, const char* name) {
    const auto member = object.find(name);
    return member != object.end() && member->is_string() ? member->get<std::string>() : std::string();
}

// The reasons for which a model ends a text because it is complete.
constexpr auto orderlyReasons =
    std::to_array<std::string_view>({"stop", "eos", "eos_token", "end_turn", "stop_sequence"});

// Why a translation is not whole though it has ended. What the model had no room for, say, would be missing
// from the person's text without anybody noticing.
std::optional<Refusal> breakOff(const std::string& reason) {
    const auto is = [&](std::string_view other) {
        return std::ranges::equal(reason, other,
                                  [](unsigned char a, unsigned char b) { return std::tolower(a) == b; });
    };
    if (reason.empty() || std::ranges::any_of(orderlyReasons, is))
        return std::nullopt;
    Refusal refusal(badGateway,
                    is("length") ? "The text is too long for the model: it broke the translation off."
                    : is("content_filter") ? "The model server’s content filter broke the translation off."
                                           : "The model server broke the translation off.",
                    "broken off");
    if (!is("length") && !is("content_filter"))
        refusal.quotation = platform::text::prefix(reason, 40);
    return refusal;
}

// What follows the field's name, without the white space around it; nothing for a line of another field.
std::optional<std::string_view> valueOf(std::string_view field, std::string_view line) {
    constexpr std::string_view blanks = " \t";
    if (!line.starts_with(field))
        return std::nullopt;
    line.remove_prefix(field.size());
    line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
    return line.substr(0, line.find_last_not_of(blanks) + 1);
}

} // namespace

std::optional<std::string> ChatStream::next() {
    if (brokenOff)
        throw Refusal(*brokenOff);
    try {
        while (!complete) {
            const auto line = lines.next();
            if (!line) {
                checkEnd();
                break;
            }
            if (auto piece = readLine(*line))
                return piece;
            if (brokenOff)
                throw Refusal(*brokenOff);
        }
    } catch (const std::length_error&) {
        throw senselessUpstream();
    }
    return std::nullopt;
}

void ChatStream::finish() {
    lines.finish();
    hasEnded = true;
}

void ChatStream::checkEnd() {
    if (!hasEnded)
        return;
    checkSense();
    if (!hasReason)
        throw Refusal(badGateway, "The model server’s response ended before it was complete.", "lost");
    complete = true;
}

void ChatStream::checkSense() const {
    if (hasData)
        return;
    if (const json said = parseEventData(strange); isError(said))
        throw failedUpstream(UpstreamError::in(said));
    throw senselessUpstream();
}

std::optional<std::string> ChatStream::readLine(std::string_view line) {
    if (const auto data = valueOf("data:", line))
        return data->empty() ? std::nullopt : readData(*data);
    if (const auto error = valueOf("error:", line))
        throw failedUpstream(UpstreamError::in(*error));
    if (!hasData && strange.size() < enoughOfAnError)
        strange.append(line).append("\n");
    return std::nullopt;
}

std::optional<std::string> ChatStream::readData(std::string_view payload) {
    if (payload == "[DONE]") {
        checkSense();
        complete = true;
        return std::nullopt;
    }
    const json data = parseEventData(payload);
    if (data.is_discarded())
        throw senselessUpstream();
    if (!data.is_object())
        return std::nullopt;
    if (isError(data))
        throw failedUpstream(UpstreamError::in(data));
    const json* choice = first(data, "choices");
    if (!choice)
        return std::nullopt;
    hasData = true;
    const std::string reason = stringMember(*choice, "finish_reason");
    hasReason = hasReason || !reason.empty();
    if (auto refusal = breakOff(reason))
        brokenOff = std::move(refusal);
    const auto delta = choice->find("delta");
    if (delta == choice->end() || !delta->is_object())
        return std::nullopt;
    std::string content = stringMember(*delta, "content");
    return content.empty() ? std::nullopt : std::optional(std::move(content));
}

} // namespace lumarin::service
