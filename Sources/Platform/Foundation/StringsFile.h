#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

// Reads a string table: `"key" = "value";` pairs with comments between them, in UTF-8 or UTF-16, with or
// without a byte order mark. Of equal keys the last one counts. None if anything in the file is malformed.
// For any thread.
std::optional<std::map<std::string, std::string>> parseStrings(std::string_view bytes);

} // namespace platform
