#pragma once

#include "Service/Gloss/Lexicon.h"
#include "Service/Gloss/TextWriter.h"

#include <string>
#include <string_view>

namespace lumarin::service {

// Works through one text from its beginning to its end, a little at a time. Used once.
class Glosser {
public:
    // `chinese` is well-formed UTF-8 and outlives this, as `known` does. A text without any Chinese stays as
    // it is.
    Glosser(std::string_view chinese, const Lexicon& known);

    // Takes so little of the text that it is done in a moment, whatever it is.
    void advance();
    bool isComplete() const { return position == text.size(); }

    // What is English already and is not going to change.
    std::string_view settled() const;

private:
    bool takeKnown();
    bool takeBlank();
    bool takeMark();
    bool takeDate();
    bool takeUnit();
    bool takeWord();
    // Whether it was a Chinese character.
    bool takeUnknown();
    std::string_view rest() const { return text.substr(position); }

    const std::string_view text;
    const Lexicon& lexicon;
    std::size_t position = 0;
    bool afterUnknown = false; // Behind a Chinese character that is not known.
    TextWriter writer;
};

} // namespace lumarin::service
