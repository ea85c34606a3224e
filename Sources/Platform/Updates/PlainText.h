#pragma once

#include <string>
#include <string_view>

namespace platform {

// HTML as lines of plain text: no marks, a bullet for each item of a list, and of scripts and styles nothing.
// A text without marks keeps its lines. Any thread.
std::string plainText(std::string_view html);

// As much of a text as can be read at a glance, as valid UTF-8 without control characters or lines that say
// nothing; an ellipsis where something is left out. Any thread.
std::string abridged(std::string_view text);

} // namespace platform
