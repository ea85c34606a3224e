#pragma once

#include <compare>
#include <string_view>

// Version texts: numbers between dots, "1.10.2", possibly with words for what comes before the version
// itself, "2.0-beta.1" or "2.0b1". Pure functions, for any thread.
namespace platform::version {

// Whether the text is a version that a feed or a bundle may have.
bool isValid(std::string_view text);

// Number by number, missing ones being zero; a word makes a version earlier than the same one without. What
// stands behind a plus sign does not count.
std::weak_ordering compare(std::string_view left, std::string_view right);

// The first version in a sentence: "12" in "Debian GNU/Linux 12 (bookworm)". Empty if there is none.
std::string_view findIn(std::string_view sentence);

} // namespace platform::version
