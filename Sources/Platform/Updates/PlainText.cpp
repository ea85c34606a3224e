#include "Platform/Updates/PlainText.h"

#include "Platform/Foundation/Text.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace platform {
namespace {

constexpr std::size_t maximumLines = 16;
constexpr std::size_t maximumLineLength = 240;
// With its two marks.
constexpr std::size_t maximumEntityLength = 10;

bool contains(std::initializer_list<std::string_view> names, std::string_view name) {
    return std::ranges::find(names, name) != names.end();
}

bool isSpace(char character) {
    return character == ' ' || character == '\t' || character == '\r' || character == '\n';
}

// The name of a tag that begins with what stands behind its '<', in lower case and with its slash; empty for
// what is no tag.
std::string tagName(std::string_view text) {
    std::string name;
    for (const char character : text.substr(0, 12)) {
        const char lower =
            character >= 'A' && character <= 'Z' ? static_cast<char>(character | 0x20) : character;
        const bool isLetter = lower >= 'a' && lower <= 'z';
        const bool isMark = name.empty() && (lower == '/' || lower == '!');
        const bool isDigit = !name.empty() && lower >= '0' && lower <= '9';
        if (!isLetter && !isMark && !isDigit)
            break;
        name += lower;
    }
    return name == "/" ? std::string() : name;
}

class Reader {
public:
    explicit Reader(std::string_view html) : rest(html), keepsLines(!hasTags(html)) {}

    std::string read() {
        while (!rest.empty()) {
            if (rest.front() == '<' && !tagName(rest.substr(1)).empty())
                readTag();
            else if (rest.front() == '&')
                readEntity();
            else
                readCharacter();
        }
        return std::move(result);
    }

private:
    static bool hasTags(std::string_view html) {
        for (auto at = html.find('<'); at != std::string_view::npos; at = html.find('<', at + 1))
            if (!tagName(html.substr(at + 1)).empty())
                return true;
        return false;
    }

    void skipTo(std::string_view end) {
        const auto at = rest.find(end);
        rest.remove_prefix(at == std::string_view::npos ? rest.size() : at + end.size());
    }

    void skipElement(const std::string& name) {
        do
            skipTo("</");
        while (!rest.empty() && tagName(rest) != name);
        skipTo(">");
    }

    void readTag() {
        const std::string name = tagName(rest.substr(1));
        if (rest.starts_with("<!--"))
            return skipTo("-->");
        skipTo(">");
        if (contains({"script", "style", "head", "title"}, name))
            skipElement(name);
        const std::string_view bare = std::string_view(name).substr(name.front() == '/' ? 1 : 0);
        const bool isHeading = bare.size() == 2 && bare[0] == 'h' && bare[1] >= '1' && bare[1] <= '6';
        if (isHeading
            || contains({"br", "p", "div", "ul", "ol", "li", "tr", "table", "section", "pre", "hr"}, bare))
            result += '\n';
        if (name == "li")
            result += "• ";
    }

    void readEntity() {
        const auto end = rest.substr(0, maximumEntityLength).find(';');
        const std::string_view name = end == std::string_view::npos ? "" : rest.substr(1, end - 1);
        static constexpr std::pair<std::string_view, std::string_view> known[] = {
            {"amp", "&"},   {"lt", "<"},    {"gt", ">"},     {"quot", "\""}, {"apos", "'"},  {"nbsp", " "},
            {"ndash", "–"}, {"mdash", "—"}, {"hellip", "…"}, {"lsquo", "‘"}, {"rsquo", "’"}, {"ldquo", "“"},
            {"rdquo", "”"}, {"bull", "•"},  {"copy", "©"},   {"trade", "™"}, {"times", "×"}, {"rarr", "→"}};
        const auto found =
            std::ranges::find(known, name, &std::pair<std::string_view, std::string_view>::first);
        if (found != std::end(known)) {
            result += found->second;
        } else if (!name.starts_with('#') || !readNumber(name.substr(1))) {
            result += '&';
            rest.remove_prefix(1);
            return;
        }
        rest.remove_prefix(end + 1);
    }

    bool readNumber(std::string_view digits) {
        const bool isHexadecimal = digits.starts_with('x') || digits.starts_with('X');
        if (isHexadecimal)
            digits.remove_prefix(1);
        unsigned long number = 0;
        const auto [stop, error] =
            std::from_chars(digits.data(), digits.data() + digits.size(), number, isHexadecimal ? 16 : 10);
        if (error != std::errc() || stop != digits.data() + digits.size())
            return false;
        text::append(result, static_cast<char32_t>(number));
        return true;
    }

    void readCharacter() {
        const char character = rest.front();
        rest.remove_prefix(1);
        if (keepsLines || !isSpace(character))
            result += character;
        else if (!result.empty() && !isSpace(result.back()))
            result += ' ';
    }

    std::string_view rest;
    const bool keepsLines;
    std::string result;
};

std::string withoutControls(std::string_view line) {
    std::string result;
    for (const char character : line)
        if (const auto byte = static_cast<unsigned char>(character); byte >= 0x20 && byte != 0x7F)
            result += character;
        else if (character == '\t')
            result += ' ';
    return text::trimmed(result);
}

} // namespace

std::string plainText(std::string_view html) {
    return Reader(html).read();
}

std::string abridged(std::string_view text) {
    std::string result;
    std::size_t lines = 0;
    while (!text.empty()) {
        const std::string_view raw = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(text.size(), raw.size() + 1));
        std::string line = text::repaired(withoutControls(raw));
        if (line.empty() || line == "•")
            continue;
        if (lines == maximumLines)
            return result + "\n…";
        if (text::characterCount(line) > maximumLineLength)
            line = text::prefix(line, maximumLineLength) + "…";
        result += (lines++ == 0 ? "" : "\n") + line;
    }
    return result;
}

} // namespace platform
