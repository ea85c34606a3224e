#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>

namespace lumarin::service {

// Every word and phrase the gloss knows, to be found in running text. Immutable; any thread.
class Lexicon {
public:
    struct Match {
        std::size_t length = 0; // In bytes; 0 when nothing is known here.
        std::string_view english;
        bool standsAnywhere = false; // Even beside characters that are not known.
    };

    Lexicon();

    // The longest word or phrase the text begins with.
    Match word(std::string_view text) const { return longest(words, text); }

    // The longest unit the text, which comes after a figure, begins with.
    Match unit(std::string_view text) const { return longest(units, text); }

private:
    struct Entry {
        std::string english;
        bool standsAnywhere;
    };
    using Table = std::unordered_map<std::string_view, Entry>;

    void add(Table& table, std::string_view chinese, std::string_view english, bool standsAnywhere);
    Match longest(const Table& table, std::string_view text) const;

    Table words;
    Table units;
    std::size_t longestEntry = 0;
};

} // namespace lumarin::service
