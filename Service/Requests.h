#pragma once

#include "Service/Engine/TranslationEngine.h"

#include <string_view>

namespace lumarin::service {

// Reads the JSON body of a request for a streamed translation. Throws a Refusal that says what is wrong.
TranslationRequest parseStreamRequest(std::string_view body);

// Reads the JSON body of a request for a translation in one piece. Throws like parseStreamRequest.
TranslationRequest parseWholeRequest(std::string_view body);

} // namespace lumarin::service
