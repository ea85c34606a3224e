#include "Service/Gloss/TextWriter.h"

#include "Service/Gloss/UTF8.h"

#include <algorithm>
#include <cctype>

namespace lumarin::service {
namespace {

bool isAlphanumeric(char byte) {
    return std::isalnum(static_cast<unsigned char>(byte)) != 0;
}

// Letters of any script, emoji, and those of the marks that words keep their distance from.
bool isWordlike(char byte, std::string_view marks) {
    return isAlphanumeric(byte) || static_cast<unsigned char>(byte) >= 0x80
           || marks.find(byte) != std::string_view::npos;
}

bool endsClause(std::string_view mark) {
    return mark.find_first_of(",.!?;:") != std::string_view::npos;
}

bool endsSentence(std::string_view mark) {
    return mark.find_first_of(".!?") != std::string_view::npos;
}

} // namespace

void TextWriter::word(std::string_view english) {
    if (english.starts_with(',')) {
        auto end = text.find_last_not_of(' ');
        if (end == std::string::npos
            || std::string_view("\n,.!?;:(").find(text[end]) != std::string_view::npos)
            english.remove_prefix(2);
        else
            closeUp();
    }
    if (english.empty())
        return;
    if (english[0] != ',')
        space();
    std::size_t start = text.size();
    text += english;
    if (sentenceStarts)
        text[start] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[start])));
    sentenceStarts = false;
    last = Last::word;
}

void TextWriter::unchanged(std::string_view character) {
    bool isQuote = character == "\"";
    bool opens = isQuote && !quoteIsOpen;
    if (last == Last::word && (opens || isWordlike(character[0], "([{$#@")))
        space();
    text += character;
    quoteIsOpen = quoteIsOpen != isQuote;
    last = opens || !(isQuote || isWordlike(character[0], ",.!?;:)]}%")) ? Last::joint : Last::unchanged;
    if (isAlphanumeric(character[0]) || isHan(character))
        sentenceStarts = false;
    else if (endsSentence(character))
        sentenceStarts = true;
}

void TextWriter::mark(std::string_view english, Mark kind) {
    if (kind == Mark::opening || kind == Mark::separate)
        space();
    else
        closeUp();
    // A word may have brought its comma with it.
    if (kind == Mark::closing && text.ends_with(',') && endsClause(english))
        text.pop_back();
    text += english;
    last = kind == Mark::opening || kind == Mark::joining ? Last::joint : Last::word;
    if (endsSentence(english))
        sentenceStarts = true;
}

void TextWriter::blank(std::string_view character) {
    text += character;
    last = Last::nothing;
    if (character == "\n")
        sentenceStarts = true;
}

bool TextWriter::lineIsNumber() const {
    constexpr std::size_t longest = 16;
    const std::string_view end = std::string_view(text).substr(text.size() - std::min(text.size(), longest));
    const auto line = end.substr(end.rfind('\n') + 1);
    return !line.empty() && line.size() < longest
           && line.find_first_not_of("0123456789") == std::string_view::npos;
}

void TextWriter::space() {
    if (last == Last::word || last == Last::unchanged)
        text += ' ';
}

void TextWriter::closeUp() {
    if (text.ends_with(' '))
        text.pop_back();
}

} // namespace lumarin::service
