#pragma once

#include "Service/Lexicon.h"
#include "Service/TextWriter.h"

#include <string>
#include <string_view>

namespace lumarin::service {

// Works through one text from its beginning to its end. Used once.
class Glosser {
public:
    // `chinese` is well-formed UTF-8.
    Glosser(std::string_view chinese, const Lexicon& known) : text(chinese), lexicon(known) {}

    std::string run();

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
