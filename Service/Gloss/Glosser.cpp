#include "Service/Gloss/Glosser.h"

#include "Service/Gloss/CalendarDate.h"
#include "Service/Gloss/UTF8.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace lumarin::service {
namespace {

using Kind = TextWriter::Mark;

struct Mark {
    std::string_view chinese;
    std::string_view english;
    Kind kind;
};

constexpr std::array punctuation{
    Mark{"，", ",", Kind::closing},   Mark{"。", ".", Kind::closing},  Mark{"！", "!", Kind::closing},
    Mark{"？", "?", Kind::closing},   Mark{"；", ";", Kind::closing},  Mark{"：", ":", Kind::closing},
    Mark{"、", ",", Kind::closing},   Mark{"（", "(", Kind::opening},  Mark{"）", ")", Kind::closing},
    Mark{"【", "[", Kind::opening},   Mark{"】", "]", Kind::closing},  Mark{"“", "“", Kind::opening},
    Mark{"”", "”", Kind::closing},    Mark{"《", "“", Kind::opening},  Mark{"》", "”", Kind::closing},
    Mark{"「", "“", Kind::opening},   Mark{"」", "”", Kind::closing},  Mark{"％", "%", Kind::closing},
    Mark{"……", "...", Kind::closing}, Mark{"——", "—", Kind::separate}, Mark{"～", "~", Kind::joining},
};

constexpr auto blankCharacters = std::to_array<std::string_view>({" ", "\t", "\r", "\n", "\u3000"});

// The figure a text ends with, which may have a blank or a "ten thousand" behind it; of a long one the end.
std::string_view figureAtEnd(std::string_view text) {
    if (text.ends_with(' '))
        text.remove_suffix(1);
    if (constexpr std::string_view tenThousand = "万"; text.ends_with(tenThousand))
        text.remove_suffix(tenThousand.size());
    constexpr std::size_t enough = 16;
    text.remove_prefix(text.size() - std::min(text.size(), enough));
    return text.substr(text.find_last_not_of("0123456789.,") + 1);
}

bool hasChinese(std::string_view text) {
    for (std::size_t position = 0; position < text.size();) {
        auto character = characterAt(text, position);
        if (isHan(character))
            return true;
        position += character.size();
    }
    return false;
}

} // namespace

Glosser::Glosser(std::string_view chinese, const Lexicon& known) : text(chinese), lexicon(known) {
    if (hasChinese(text))
        return;
    writer.text = text;
    position = text.size();
}

void Glosser::advance() {
    constexpr std::size_t little = 1024;
    for (const std::size_t end = std::min(position + little, text.size()); position < end;)
        afterUnknown = !takeKnown() && takeUnknown();
}

std::string_view Glosser::settled() const {
    // Punctuation may still replace a blank and a comma.
    constexpr std::size_t unsettled = 2;
    const std::string_view english = writer.text;
    return isComplete() ? english : english.substr(0, english.size() - std::min(english.size(), unsettled));
}

bool Glosser::takeKnown() {
    return takeBlank() || takeMark() || takeDate() || takeUnit() || takeWord();
}

bool Glosser::takeBlank() {
    auto character = characterAt(text, position);
    if (std::ranges::find(blankCharacters, character) == blankCharacters.end())
        return false;
    writer.blank(character);
    position += character.size();
    return true;
}

bool Glosser::takeMark() {
    const auto* mark =
        std::ranges::find_if(punctuation, [&](const auto& each) { return rest().starts_with(each.chinese); });
    if (mark == punctuation.end())
        return false;
    // 1、 numbers an item; anywhere else 、 is the comma of a list.
    bool numbersItem = mark->chinese == "、" && writer.lineIsNumber();
    writer.mark(numbersItem ? "." : mark->english, mark->kind);
    position += mark->chinese.size();
    return true;
}

bool Glosser::takeDate() {
    // Not from the middle of a figure.
    if (position > 0 && std::isalnum(static_cast<unsigned char>(text[position - 1])) != 0)
        return false;
    auto date = CalendarDate::at(rest());
    if (!date)
        return false;
    writer.word(date->english);
    position += date->length;
    return true;
}

bool Glosser::takeUnit() {
    auto figure = figureAtEnd(text.substr(0, position));
    auto unit = figure.empty() ? Lexicon::Match{} : lexicon.unit(rest());
    if (unit.length == 0 || unit.length < lexicon.word(rest()).length)
        return false;
    bool isSingular = figure == "1" && unit.english.ends_with('s');
    writer.word(unit.english.substr(0, unit.english.size() - (isSingular ? 1 : 0)));
    position += unit.length;
    return true;
}

bool Glosser::takeWord() {
    auto match = lexicon.word(rest());
    if (match.length == 0)
        return false;
    if (!match.standsAnywhere) {
        // Beside an unknown character it is a part of an unknown word rather.
        auto next = rest().substr(match.length);
        bool nextIsUnknown = !next.empty() && isHan(characterAt(next, 0)) && lexicon.word(next).length == 0;
        if (afterUnknown || nextIsUnknown)
            return false;
    }
    writer.word(match.english);
    position += match.length;
    return true;
}

bool Glosser::takeUnknown() {
    auto character = characterAt(text, position);
    writer.unchanged(character);
    position += character.size();
    return isHan(character);
}

} // namespace lumarin::service
