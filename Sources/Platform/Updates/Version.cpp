#include "Platform/Updates/Version.h"

#include <algorithm>
#include <string>
#include <vector>

namespace platform::version {
namespace {

constexpr std::size_t maximumLength = 64;

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

bool isLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

// A number without its leading zeros, however long, or a word in lower case.
struct Part {
    bool isNumber;
    std::string text;

    std::weak_ordering operator<=>(const Part& other) const {
        if (isNumber != other.isNumber)
            return isNumber ? std::weak_ordering::greater : std::weak_ordering::less;
        if (isNumber && text.size() != other.text.size())
            return text.size() <=> other.text.size();
        return text <=> other.text;
    }
};

struct Parts {
    std::vector<Part> numbers;
    // From the first word on.
    std::vector<Part> prerelease;
};

std::string_view withoutMark(std::string_view text) {
    if (text.size() > 1 && (text.front() == 'v' || text.front() == 'V') && isDigit(text[1]))
        text.remove_prefix(1);
    return text;
}

Parts partsOf(std::string_view text) {
    text = withoutMark(text);
    text = text.substr(0, text.find('+'));
    Parts parts;
    for (std::size_t at = 0; at < text.size();) {
        const bool isNumber = isDigit(text[at]);
        if (!isNumber && !isLetter(text[at])) {
            ++at;
            continue;
        }
        Part part{isNumber, {}};
        for (; at < text.size() && (isNumber ? isDigit(text[at]) : isLetter(text[at])); ++at)
            part.text += isNumber ? text[at] : static_cast<char>(text[at] | 0x20);
        if (isNumber)
            part.text.erase(0, part.text.find_first_not_of('0'));
        const bool isOfRelease = isNumber && parts.prerelease.empty();
        (isOfRelease ? parts.numbers : parts.prerelease).push_back(std::move(part));
    }
    return parts;
}

} // namespace

bool isValid(std::string_view text) {
    return text.size() <= maximumLength && !withoutMark(text).empty() && isDigit(withoutMark(text).front())
           && std::ranges::all_of(text, [](char character) {
                  return isDigit(character) || isLetter(character)
                         || std::string_view(".-_+~").find(character) != std::string_view::npos;
              });
}

std::weak_ordering compare(std::string_view left, std::string_view right) {
    Parts one = partsOf(left);
    Parts other = partsOf(right);
    const std::size_t count = std::max(one.numbers.size(), other.numbers.size());
    one.numbers.resize(count, {true, {}});
    other.numbers.resize(count, {true, {}});
    if (const auto order = one.numbers <=> other.numbers; std::is_neq(order))
        return order;
    if (one.prerelease.empty() || other.prerelease.empty())
        return one.prerelease.empty() <=> other.prerelease.empty();
    return one.prerelease <=> other.prerelease;
}

std::string_view findIn(std::string_view sentence) {
    const auto isPartOfWord = [](char character) { return isLetter(character) || isDigit(character); };
    for (std::size_t at = 0; at < sentence.size(); ++at) {
        if (!isDigit(sentence[at]) || (at > 0 && isPartOfWord(sentence[at - 1])))
            continue;
        const auto end = std::find_if(sentence.begin() + static_cast<std::ptrdiff_t>(at), sentence.end(),
                                      [](char character) { return !isDigit(character) && character != '.'; });
        return {sentence.begin() + static_cast<std::ptrdiff_t>(at), end};
    }
    return {};
}

} // namespace platform::version
