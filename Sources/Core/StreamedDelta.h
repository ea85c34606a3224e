#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lumarin {

// The payload of a server-sent event's data line; nothing for any other line.
std::optional<std::string_view> dataPayload(std::string_view line);

// The piece of text in the payload of one event of a chat completion; nothing if there is none in it.
std::optional<std::string> deltaContent(std::string_view payload);

} // namespace lumarin
