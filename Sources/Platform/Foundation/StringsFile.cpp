#include "Platform/Foundation/StringsFile.h"

#include "Platform/Foundation/Text.h"

#include <algorithm>
#include <stdexcept>

namespace platform {

namespace {

// Never leaves this file: a malformed table as a whole is none.
struct Malformed : std::runtime_error {
    Malformed() : std::runtime_error("The string table is malformed.") {}
};

std::string asUTF8(std::string_view bytes) {
    using text::ByteOrder;
    if (bytes.starts_with("\xEF\xBB\xBF"))
        return std::string(bytes.substr(3));
    if (bytes.starts_with("\xFF\xFE"))
        return text::fromUTF16(bytes.substr(2), ByteOrder::littleEndian);
    if (bytes.starts_with("\xFE\xFF"))
        return text::fromUTF16(bytes.substr(2), ByteOrder::bigEndian);
    // A table begins with a character of ASCII, so its first unit tells the order without a mark.
    if (bytes.size() >= 2 && bytes[0] != 0 && bytes[1] == 0)
        return text::fromUTF16(bytes, ByteOrder::littleEndian);
    if (bytes.size() >= 2 && bytes[0] == 0 && bytes[1] != 0)
        return text::fromUTF16(bytes, ByteOrder::bigEndian);
    return std::string(bytes);
}

bool isLetterOrDigit(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

bool isUnquoted(char c) {
    return isLetterOrDigit(c) || std::string_view("_$:.-").find(c) != std::string::npos;
}

std::optional<unsigned> hexDigit(char c) {
    if (c >= '0' && c <= '9')
        return static_cast<unsigned>(c - '0');
    if (c >= 'a' && c <= 'f')
        return static_cast<unsigned>(c - 'a' + 10);
    if (c >= 'A' && c <= 'F')
        return static_cast<unsigned>(c - 'A' + 10);
    return std::nullopt;
}

class Parser {
public:
    explicit Parser(std::string_view text) : rest_(text) {}

    std::map<std::string, std::string> table() {
        std::map<std::string, std::string> table;
        for (skipBlanks(); !rest_.empty(); skipBlanks()) {
            std::string key = word();
            skipBlanks();
            std::string value = key;
            if (skip("=")) {
                skipBlanks();
                value = word();
                skipBlanks();
            }
            if (!skip(";"))
                throw Malformed();
            table.insert_or_assign(std::move(key), std::move(value));
        }
        return table;
    }

private:
    bool skip(std::string_view expected) {
        if (!rest_.starts_with(expected))
            return false;
        rest_.remove_prefix(expected.size());
        return true;
    }

    char take() {
        if (rest_.empty())
            throw Malformed();
        const char c = rest_.front();
        rest_.remove_prefix(1);
        return c;
    }

    void skipBlanks() {
        while (true) {
            rest_.remove_prefix(std::min(rest_.find_first_not_of(" \t\n\v\f\r"), rest_.size()));
            if (skip("//")) {
                rest_.remove_prefix(std::min(rest_.find_first_of("\n\r"), rest_.size()));
            } else if (skip("/*")) {
                const std::size_t end = rest_.find("*/");
                if (end == std::string_view::npos)
                    throw Malformed();
                rest_.remove_prefix(end + 2);
            } else {
                return;
            }
        }
    }

    std::string word() {
        if (skip("\""))
            return quoted();
        std::string result;
        while (!rest_.empty() && isUnquoted(rest_.front()))
            result += take();
        if (result.empty())
            throw Malformed();
        return result;
    }

    std::string quoted() {
        std::string result;
        for (char c = take(); c != '"'; c = take()) {
            if (c == '\\')
                escape(result);
            else
                result += c;
        }
        return result;
    }

    void escape(std::string& result) {
        const char c = take();
        switch (c) {
        case 'a':
            result += '\a';
            break;
        case 'b':
            result += '\b';
            break;
        case 'f':
            result += '\f';
            break;
        case 'n':
            result += '\n';
            break;
        case 'r':
            result += '\r';
            break;
        case 't':
            result += '\t';
            break;
        case 'v':
            result += '\v';
            break;
        case 'U':
        case 'u':
            unicode(result);
            break;
        default:
            if (c >= '0' && c <= '7')
                octal(result, c);
            else
                result += c; // any other character, a line break too, stands for itself
        }
    }

    void octal(std::string& result, char first) {
        auto value = static_cast<char32_t>(first - '0');
        for (int digits = 1; digits < 3 && !rest_.empty() && rest_.front() >= '0' && rest_.front() <= '7';
             ++digits)
            value = value * 8 + static_cast<char32_t>(take() - '0');
        text::append(result, value);
    }

    char32_t unit() {
        char32_t value = 0;
        for (int i = 0; i < 4; ++i) {
            const std::optional<unsigned> digit = hexDigit(take());
            if (!digit)
                throw Malformed();
            value = value * 16 + *digit;
        }
        return value;
    }

    void unicode(std::string& result) {
        char32_t value = unit();
        while (text::isHighSurrogate(value) && (skip("\\U") || skip("\\u"))) {
            const char32_t following = unit();
            if (text::isLowSurrogate(following)) {
                value = text::combineSurrogates(value, following);
            } else {
                text::append(result, value);
                value = following;
            }
        }
        text::append(result, value);
    }

    std::string_view rest_;
};

} // namespace

std::optional<std::map<std::string, std::string>> parseStrings(std::string_view bytes) {
    const std::string text = asUTF8(bytes);
    if (!text::isValid(text))
        return std::nullopt;
    try {
        return Parser(text).table();
    } catch (const Malformed&) {
        return std::nullopt;
    }
}

} // namespace platform
