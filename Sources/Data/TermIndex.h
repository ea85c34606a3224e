#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace lumarin {

// Chinese term -> English rendering.
using TermDictionary = std::map<std::string, std::string>;

// Finds the terms of a large dictionary in a text in the time it takes to read the text. It refers to the
// dictionary, which must outlive it unchanged.
class TermIndex {
public:
    TermIndex() = default;
    explicit TermIndex(const TermDictionary& terms);

    // All terms that stand anywhere in the text, overlapping ones too.
    TermDictionary termsIn(std::string_view text) const;

private:
    struct Entry {
        const TermDictionary::value_type* term;
        // The longest other term that this one begins with, or none.
        std::size_t shorter;
    };
    struct Range {
        std::size_t begin;
        std::size_t end;
    };

    // In byte order of the terms; those that begin with the same character stand together in a range.
    std::vector<Entry> entries;
    std::unordered_map<std::uint32_t, Range> rangesByFirstCharacter;
};

} // namespace lumarin
