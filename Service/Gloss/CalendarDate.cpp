#include "Service/Gloss/CalendarDate.h"

#include <array>
#include <regex>

namespace lumarin::service {
namespace {

constexpr std::array months{"January", "February", "March",     "April",   "May",      "June",
                            "July",    "August",   "September", "October", "November", "December"};

std::string relation(const std::string& chinese) {
    if (chinese.ends_with("前"))
        return "before ";
    if (chinese.ends_with("后"))
        return "after ";
    return chinese.empty() ? "" : "around ";
}

} // namespace

std::optional<CalendarDate> CalendarDate::at(std::string_view text) {
    static const std::regex form("(?:在)?(?:([12][0-9]{3})年)?(1[0-2]|0?[1-9])月(?:份)?"
                                 "(?:([12][0-9]|3[01]|0?[1-9])(?:日|号))?((?:之|以)?(?:前|后)|左右)?");
    std::cmatch found;
    if (!std::regex_search(text.data(), text.data() + text.size(), found, form,
                           std::regex_constants::match_continuous))
        return std::nullopt;
    std::string english = relation(found[4]) + months[std::stoul(found[2]) - 1];
    if (found[3].matched)
        english += " " + std::to_string(std::stoul(found[3]));
    if (found[1].matched)
        english += (found[3].matched ? ", " : " ") + found[1].str();
    return CalendarDate{static_cast<std::size_t>(found.length()), english};
}

} // namespace lumarin::service
