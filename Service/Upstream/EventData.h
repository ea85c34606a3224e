#pragma once

#include <nlohmann/json.hpp>
#include <string_view>

namespace lumarin::service {

// The JSON of a server-sent event; discarded if it is none. Servers that cut a text anywhere escape each half
// of a character for itself: a half becomes U+FFFD here rather than costing the whole event.
nlohmann::json parseEventData(std::string_view data);

} // namespace lumarin::service
