#include "Service/Gloss/Lexicon.h"

#include "Data/BuiltinTerms.h"
#include "Service/Gloss/Phrases.h"
#include "Service/Gloss/UTF8.h"

#include <algorithm>
#include <cctype>

namespace lumarin::service {
namespace {

// A term's first rendering as it stands inside a sentence: "sample" for "Sample", "quote" for
// "Quote / Quotation", "B/L" for "B/L (Bill of Lading)". Abbreviations are the words that have a capital
// or a figure beyond their first letter.
std::string inSentence(std::string_view rendering) {
    std::string result(rendering.substr(0, std::min(rendering.find(" ("), rendering.find(" / "))));
    auto isLower = [](unsigned char byte) { return std::isalpha(byte) == 0 || std::islower(byte) != 0; };
    for (auto word = result.begin(); word != result.end();) {
        auto end = std::find(word, result.end(), ' ');
        if (std::all_of(word + 1, end, isLower))
            *word = static_cast<char>(std::tolower(static_cast<unsigned char>(*word)));
        word = end == result.end() ? end : end + 1;
    }
    return result;
}

template <typename Take>
void forEachPhrase(std::string_view table, Take take) {
    constexpr std::string_view blanks = " \n";
    while (table.find(';') != std::string_view::npos) {
        table.remove_prefix(table.find_first_not_of(blanks));
        auto phrase = table.substr(0, table.find(';'));
        table.remove_prefix(phrase.size() + 1);
        auto chinese = phrase.substr(0, phrase.find(' '));
        take(chinese, phrase.substr(std::min(chinese.size() + 1, phrase.size())));
    }
}

} // namespace

Lexicon::Lexicon() {
    for (const auto& term : builtinTerms)
        add(words, term.chinese, inSentence(term.english), true);
    auto isOneCharacter = [](std::string_view chinese) { return characterAt(chinese, 0) == chinese; };
    for (auto table : {phrases::courtesies, phrases::questions, phrases::connections, phrases::times,
                       phrases::actions, phrases::things})
        forEachPhrase(table, [&](auto chinese, auto english) {
            add(words, chinese, english, !isOneCharacter(chinese));
        });
    forEachPhrase(phrases::littleWords,
                  [&](auto chinese, auto english) { add(words, chinese, english, true); });
    forEachPhrase(phrases::units, [&](auto chinese, auto english) { add(units, chinese, english, true); });
}

void Lexicon::add(Table& table, std::string_view chinese, std::string_view english, bool standsAnywhere) {
    table.emplace(chinese, Entry{std::string(english), standsAnywhere});
    longestEntry = std::max(longestEntry, chinese.size());
}

Lexicon::Match Lexicon::longest(const Table& table, std::string_view text) const {
    Match match;
    for (std::size_t end = 0; end < std::min(text.size(), longestEntry);) {
        end += characterAt(text, end).size();
        if (auto found = table.find(text.substr(0, end)); found != table.end())
            match = {end, found->second.english, found->second.standsAnywhere};
    }
    return match;
}

} // namespace lumarin::service
