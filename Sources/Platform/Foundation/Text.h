#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

// What the program needs to know about UTF-8 text. Pure functions, for any thread; none fails on
// invalid UTF-8: a broken sequence counts as one replacement character and is copied as it stands,
// unless said otherwise.
namespace platform::text {

enum class ByteOrder { littleEndian, bigEndian };

// The number of characters as a reader sees them (an emoji family, a flag, CR LF are one each).
std::size_t characterCount(std::string_view text);

// The first `characters` characters as a reader sees them; the whole text if it has fewer.
std::string prefix(std::string_view text, std::size_t characters);

// The text without the white space and line breaks at both ends, those of any script.
std::string trimmed(std::string_view text);

bool isValid(std::string_view text);

// Whether a line of the text is read from its right end: its first letter that has a direction decides.
bool isRightToLeft(std::string_view text);

// The text with every broken sequence replaced by U+FFFD, one for each longest beginning of a character.
std::string repaired(std::string_view text);

// The text without control characters other than tabs and line breaks, whose rarer forms become line feeds,
// and without the two characters that have letters shown in another order than they stand in. Those that say
// which way a foreign word is read stay.
std::string withoutControls(std::string_view text);

// Fills "%@" (the next argument), "%2$@" (the second one) and "%%" (a per cent sign). An argument that is
// missing is empty; other directives stay as they stand.
std::string format(std::string_view pattern, std::initializer_list<std::string_view> arguments);

// UTF-16 as UTF-8, without looking for a byte order mark. Lone surrogates and a lone last byte become
// U+FFFD.
std::string fromUTF16(std::string_view bytes, ByteOrder order);

constexpr bool isHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}
constexpr bool isLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}
constexpr char32_t combineSurrogates(char32_t high, char32_t low) {
    return 0x10000 + ((high - 0xD800) << 10U) + (low - 0xDC00);
}

// Appends one code point to UTF-8 text; a surrogate or a number outside Unicode as U+FFFD.
void append(std::string& text, char32_t codePoint);

} // namespace platform::text
