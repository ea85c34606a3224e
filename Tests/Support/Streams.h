#pragma once

#include "Platform/Headless/ScriptedHTTP.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace tests {

// The line by which the service streams one piece of a translation.
inline std::string deltaLine(const std::string& piece) {
    nlohmann::json event;
    event["choices"] = nlohmann::json::array({{{"delta", {{"content", piece}}}}});
    return "data: " + event.dump() + "\n\n";
}

// A whole streamed translation, each piece and the end `delay` after what came before.
inline platform::headless::ScriptedAnswer streamed(const std::vector<std::string>& pieces,
                                                   platform::Duration delay = {}) {
    platform::headless::ScriptedAnswer answer;
    for (const auto& piece : pieces)
        answer.pieces.push_back(deltaLine(piece));
    answer.pieces.push_back("data: [DONE]\n\n");
    answer.delay = delay;
    return answer;
}

} // namespace tests
