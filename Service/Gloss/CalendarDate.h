#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace lumarin::service {

// A date in figures at the beginning of a Chinese text, in English, with the "before" or "after" behind it.
struct CalendarDate {
    std::size_t length; // Of the Chinese, in bytes.
    std::string english;

    // 2025年3月5日, 3月5号前, 3月 and the like.
    static std::optional<CalendarDate> at(std::string_view text);
};

} // namespace lumarin::service
