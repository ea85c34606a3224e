#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

// The JSON that settings are kept in. For any thread. Of members with the same name the last one counts; a
// byte order mark at the beginning is allowed.

// A JSON object whose values are all strings; none for anything else.
std::optional<std::map<std::string, std::string>> decodeStringDictionary(std::string_view bytes);

// The members of a JSON object whose values are strings, whatever the others are; none if it is not JSON
// or not an object.
std::optional<std::map<std::string, std::string>> decodeStringMembers(std::string_view bytes);

// The compact JSON object. Throws std::exception when a text is not valid UTF-8.
std::string encodeStringDictionary(const std::map<std::string, std::string>& dictionary);

// Whether arrays and objects stand in each other more than 32 deep, as only a text does that is meant to
// harm: copying what is read of it takes the stack once a level. To be asked before foreign JSON is read into
// a tree; of a text that is no JSON it says nothing.
bool isTooDeep(std::string_view json);

} // namespace platform
