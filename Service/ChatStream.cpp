#include "Service/ChatStream.h"

#include "Service/Refusal.h"

#include <nlohmann/json.hpp>

namespace lumarin::service {
namespace {

using nlohmann::json;

constexpr int badGateway = 502;

Refusal senseless() {
    return {badGateway, "The model server's answer makes no sense: is it a chat-completions endpoint?",
            "senseless answer"};
}

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

} // namespace

std::optional<std::string> ChatStream::next() {
    constexpr std::string_view field = "data:";
    if (!brokenOff.empty())
        throw Refusal(badGateway, brokenOff, "broken off");
    try {
        while (!complete) {
            const auto line = lines.next();
            if (!line) {
                checkEnd();
                break;
            }
            if (!line->starts_with(field))
                continue;
            std::string_view payload = std::string_view(*line).substr(field.size());
            if (payload.starts_with(' '))
                payload.remove_prefix(1);
            if (auto piece = read(payload))
                return piece;
            if (!brokenOff.empty())
                throw Refusal(badGateway, brokenOff, "broken off");
        }
    } catch (const std::length_error&) {
        throw senseless();
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
    if (!hasData)
        throw senseless();
    if (!hasReason)
        throw Refusal(badGateway, "The model server's answer ended before it was complete.", "lost");
    complete = true;
}

std::optional<std::string> ChatStream::read(std::string_view payload) {
    if (payload == "[DONE]") {
        complete = true;
        return std::nullopt;
    }
    const json data = json::parse(payload, nullptr, false);
    if (data.is_discarded())
        throw senseless();
    if (!data.is_object())
        return std::nullopt;
    if (const auto error = data.find("error"); error != data.end() && !error->is_null()) {
        Refusal refusal(badGateway, "The model server failed.", "upstream error");
        refusal.quotation = error->is_object() ? stringMember(*error, "message") : "";
        throw refusal;
    }
    const json* choice = first(data, "choices");
    if (!choice)
        return std::nullopt;
    hasData = true;
    const std::string reason = stringMember(*choice, "finish_reason");
    hasReason = hasReason || !reason.empty();
    // What the model had no room for would be missing from the person's text without anybody noticing.
    if (reason == "length")
        brokenOff = "The text is too long for the model: it broke the translation off.";
    if (reason == "content_filter")
        brokenOff = "The model server's content filter broke the translation off.";
    const auto delta = choice->find("delta");
    if (delta == choice->end() || !delta->is_object())
        return std::nullopt;
    std::string content = stringMember(*delta, "content");
    return content.empty() ? std::nullopt : std::optional(std::move(content));
}

} // namespace lumarin::service
