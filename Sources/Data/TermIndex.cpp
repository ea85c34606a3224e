#include "Data/TermIndex.h"

#include <algorithm>

namespace lumarin {
namespace {

constexpr auto none = static_cast<std::size_t>(-1);

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

// The bytes of the first character, packed. Terms are valid UTF-8, so equal terms begin with equal
// characters.
std::uint32_t firstCharacter(std::string_view text) {
    std::uint32_t packed = static_cast<unsigned char>(text[0]);
    for (std::size_t i = 1; i < std::min<std::size_t>(text.size(), 4) && isContinuation(text[i]); ++i)
        packed = packed << 8U | static_cast<unsigned char>(text[i]);
    return packed;
}

} // namespace

TermIndex::TermIndex(const TermDictionary& terms) {
    entries.reserve(terms.size());
    for (const auto& term : terms) {
        const std::string& chinese = term.first;
        if (chinese.empty())
            continue;
        // In this order the terms that a term begins with come before it, and all terms between begin with
        // them too.
        std::size_t shorter = entries.empty() ? none : entries.size() - 1;
        while (shorter != none && !chinese.starts_with(entries[shorter].term->first))
            shorter = entries[shorter].shorter;
        auto range =
            rangesByFirstCharacter.try_emplace(firstCharacter(chinese), Range{entries.size(), 0}).first;
        entries.push_back(Entry{&term, shorter});
        range->second.end = entries.size();
    }
}

TermDictionary TermIndex::termsIn(std::string_view text) const {
    TermDictionary found;
    for (std::size_t position = 0; position < text.size(); ++position) {
        if (isContinuation(text[position]))
            continue;
        std::string_view rest = text.substr(position);
        auto range = rangesByFirstCharacter.find(firstCharacter(rest));
        if (range == rangesByFirstCharacter.end())
            continue;
        auto begin = entries.begin() + static_cast<std::ptrdiff_t>(range->second.begin);
        auto end = entries.begin() + static_cast<std::ptrdiff_t>(range->second.end);
        auto after = std::upper_bound(begin, end, rest, [](std::string_view sought, const Entry& entry) {
            return sought < entry.term->first;
        });
        if (after == begin)
            continue;
        // Whatever the rest begins with, the last term not after it begins with as well.
        for (auto i = static_cast<std::size_t>(after - entries.begin()) - 1; i != none;
             i = entries[i].shorter)
            if (rest.starts_with(entries[i].term->first))
                found.insert(*entries[i].term);
    }
    return found;
}

} // namespace lumarin
