#pragma once

#include <string>
#include <string_view>

namespace lumarin::service {

// What a model is told for a request that brings no prompt. Throws a Refusal for a language that is not one
// of the program's.
std::string plainInstruction(std::string_view targetLanguage);

} // namespace lumarin::service
