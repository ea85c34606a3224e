#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace lumarin {

// The texts by which the cases of an enumeration are stored and sent, in the order of the cases. To be
// specialised for each enumeration that has them.
template <typename Enumeration>
struct RawValues;

template <typename Enumeration>
constexpr std::string_view rawValue(Enumeration value) {
    return RawValues<Enumeration>::texts[static_cast<std::size_t>(value)];
}

// The case with exactly this raw value, if there is one.
template <typename Enumeration>
constexpr std::optional<Enumeration> fromRawValue(std::string_view text) {
    const auto& texts = RawValues<Enumeration>::texts;
    for (std::size_t i = 0; i < texts.size(); ++i)
        if (texts[i] == text)
            return static_cast<Enumeration>(i);
    return std::nullopt;
}

// All cases in the order of their declaration.
template <typename Enumeration>
constexpr auto allCases() {
    std::array<Enumeration, RawValues<Enumeration>::texts.size()> cases{};
    for (std::size_t i = 0; i < cases.size(); ++i)
        cases[i] = static_cast<Enumeration>(i);
    return cases;
}

} // namespace lumarin
