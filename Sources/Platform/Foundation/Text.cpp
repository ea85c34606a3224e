#include "Platform/Foundation/Text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utf8proc.h>

namespace platform::text {

namespace {

constexpr char32_t replacement = 0xFFFD;

struct Decoded {
    char32_t codePoint = replacement;
    std::size_t length = 0;
    bool isValid = false;
};

unsigned char byteAt(std::string_view text, std::size_t position) {
    return static_cast<unsigned char>(text[position]);
}

// The code point at a position inside the text. A broken one is as long as what could have been the
// beginning of a character, so that the count of replacements is the one that everybody else gets.
Decoded decode(std::string_view text, std::size_t position) {
    const unsigned char lead = byteAt(text, position);
    if (lead < 0x80)
        return {lead, 1, true};

    // Bounds of the second byte keep out overlong forms, surrogates and numbers outside Unicode.
    unsigned char lowest = 0x80;
    unsigned char highest = 0xBF;
    std::size_t length = 0;
    char32_t codePoint = 0;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        codePoint = lead & 0x1FU;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        codePoint = lead & 0x0FU;
        if (lead == 0xE0)
            lowest = 0xA0;
        if (lead == 0xED)
            highest = 0x9F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        codePoint = lead & 0x07U;
        if (lead == 0xF0)
            lowest = 0x90;
        if (lead == 0xF4)
            highest = 0x8F;
    } else {
        return {replacement, 1, false};
    }
    for (std::size_t i = 1; i < length; ++i) {
        if (position + i == text.size())
            return {replacement, i, false};
        const unsigned char byte = byteAt(text, position + i);
        if (byte < lowest || byte > highest)
            return {replacement, i, false};
        codePoint = (codePoint << 6U) | (byte & 0x3FU);
        lowest = 0x80;
        highest = 0xBF;
    }
    return {codePoint, length, true};
}

struct Extent {
    std::size_t characters = 0;
    std::size_t bytes = 0;
};

// How far the first characters reach, up to a maximum of them.
Extent measure(std::string_view text, std::size_t maximum) {
    Extent extent;
    utf8proc_int32_t state = 0;
    utf8proc_int32_t previous = 0;
    while (extent.bytes < text.size()) {
        const Decoded decoded = decode(text, extent.bytes);
        const auto current = static_cast<utf8proc_int32_t>(decoded.codePoint);
        if (extent.bytes == 0 || utf8proc_grapheme_break_stateful(previous, current, &state)) {
            if (extent.characters == maximum)
                break;
            ++extent.characters;
        }
        extent.bytes += decoded.length;
        previous = current;
    }
    return extent;
}

// The zero width space counts too: the platform's own set of white space has it.
bool isWhitespace(char32_t codePoint) {
    switch (codePoint) {
    case 0x0020:
    case 0x0085:
    case 0x00A0:
    case 0x1680:
    case 0x2028:
    case 0x2029:
    case 0x202F:
    case 0x205F:
    case 0x3000:
        return true;
    default:
        return (codePoint >= 0x0009 && codePoint <= 0x000D) || (codePoint >= 0x2000 && codePoint <= 0x200B);
    }
}

bool isControl(char32_t codePoint) {
    constexpr char32_t leftToRightOverride = 0x202D;
    constexpr char32_t rightToLeftOverride = 0x202E;
    return codePoint < 0x20 || (codePoint >= 0x7F && codePoint < 0xA0) || codePoint == leftToRightOverride
           || codePoint == rightToLeftOverride;
}

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

} // namespace

std::size_t characterCount(std::string_view text) {
    return measure(text, text.size()).characters;
}

std::string prefix(std::string_view text, std::size_t characters) {
    return std::string(text.substr(0, measure(text, characters).bytes));
}

std::string trimmed(std::string_view text) {
    std::size_t begin = text.size();
    std::size_t end = text.size();
    for (std::size_t position = 0; position < text.size();) {
        const Decoded decoded = decode(text, position);
        const std::size_t next = position + decoded.length;
        if (!isWhitespace(decoded.codePoint)) {
            begin = std::min(begin, position);
            end = next;
        }
        position = next;
    }
    return std::string(text.substr(begin, end - begin));
}

bool isValid(std::string_view text) {
    for (std::size_t position = 0; position < text.size();) {
        const Decoded decoded = decode(text, position);
        if (!decoded.isValid)
            return false;
        position += decoded.length;
    }
    return true;
}

bool isRightToLeft(std::string_view text) {
    std::size_t embraced = 0;
    for (std::size_t position = 0; position < text.size();) {
        const Decoded decoded = decode(text, position);
        position += decoded.length;
        switch (utf8proc_get_property(static_cast<utf8proc_int32_t>(decoded.codePoint))->bidi_class) {
        // What is isolated has a direction of its own.
        case UTF8PROC_BIDI_CLASS_LRI:
        case UTF8PROC_BIDI_CLASS_RLI:
        case UTF8PROC_BIDI_CLASS_FSI:
            ++embraced;
            break;
        case UTF8PROC_BIDI_CLASS_PDI:
            embraced -= std::min<std::size_t>(embraced, 1);
            break;
        case UTF8PROC_BIDI_CLASS_L:
            if (embraced == 0)
                return false;
            break;
        case UTF8PROC_BIDI_CLASS_R:
        case UTF8PROC_BIDI_CLASS_AL:
            if (embraced == 0)
                return true;
            break;
        default:
            break;
        }
    }
    return false;
}

std::string repaired(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        const Decoded decoded = decode(text, position);
        if (decoded.isValid)
            result.append(text, position, decoded.length);
        else
            append(result, replacement);
        position += decoded.length;
    }
    return result;
}

std::string withoutControls(std::string_view text) {
    constexpr char32_t nextLine = 0x85;
    std::string result;
    result.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        const Decoded decoded = decode(text, position);
        const char32_t codePoint = decoded.codePoint;
        if (codePoint == '\v' || codePoint == '\f' || codePoint == nextLine)
            result += '\n';
        else if (codePoint == '\t' || codePoint == '\n' || codePoint == '\r' || !isControl(codePoint))
            result.append(text, position, decoded.length);
        position += decoded.length;
    }
    return result;
}

std::string format(std::string_view pattern, std::initializer_list<std::string_view> arguments) {
    const auto argument = [&](std::size_t index) {
        return index < arguments.size() ? arguments.begin()[index] : std::string_view();
    };
    std::string result;
    std::size_t following = 0;
    for (std::size_t position = 0; position < pattern.size();) {
        const std::string_view rest = pattern.substr(position);
        if (rest.starts_with("%%")) {
            result += '%';
            position += 2;
        } else if (rest.starts_with("%@")) {
            result += argument(following++);
            position += 2;
        } else if (rest.size() > 3 && rest[0] == '%' && rest[1] != '0' && isDigit(rest[1])
                   && rest.substr(2, 2) == "$@") {
            result += argument(static_cast<std::size_t>(rest[1] - '1'));
            position += 4;
        } else {
            result += rest.front();
            ++position;
        }
    }
    return result;
}

std::string fromUTF16(std::string_view bytes, ByteOrder order) {
    const std::size_t low = order == ByteOrder::littleEndian ? 0 : 1;
    const auto unitAt = [&](std::size_t position) {
        return static_cast<char32_t>(byteAt(bytes, position + low)
                                     | (byteAt(bytes, position + 1 - low) << 8U));
    };
    std::string result;
    result.reserve(bytes.size());
    std::size_t position = 0;
    while (position + 2 <= bytes.size()) {
        const char32_t unit = unitAt(position);
        position += 2;
        if (isHighSurrogate(unit) && position + 2 <= bytes.size() && isLowSurrogate(unitAt(position))) {
            append(result, combineSurrogates(unit, unitAt(position)));
            position += 2;
        } else {
            append(result, unit);
        }
    }
    if (position < bytes.size())
        append(result, replacement);
    return result;
}

void append(std::string& text, char32_t codePoint) {
    std::array<utf8proc_uint8_t, 4> bytes{};
    const auto value = static_cast<utf8proc_int32_t>(codePoint);
    const auto length = utf8proc_encode_char(
        utf8proc_codepoint_valid(value) ? value : utf8proc_int32_t{replacement}, bytes.data());
    text.append(bytes.begin(), bytes.begin() + length);
}

} // namespace platform::text
