#include "Service/HTTPS/Request.h"

#include <algorithm>
#include <cctype>

namespace lumarin::service {
namespace {

auto named(std::string_view name) {
    return [name](const auto& field) {
        return std::ranges::equal(field.first, name, [](unsigned char a, unsigned char b) {
            return std::tolower(a) == std::tolower(b);
        });
    };
}

} // namespace

std::size_t Request::count(std::string_view name) const {
    return static_cast<std::size_t>(std::ranges::count_if(fields, named(name)));
}

std::string Request::value(std::string_view name) const {
    const auto found = std::ranges::find_if(fields, named(name));
    return found != fields.end() ? found->second : std::string();
}

bool Request::announcesBody() const {
    return count("Transfer-Encoding") > 0 || (count("Content-Length") > 0 && value("Content-Length") != "0");
}

} // namespace lumarin::service
