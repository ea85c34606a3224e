#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lumarin::service {

// The head of a request.
struct Request {
    std::string method; // Empty for a request that could not be read.
    std::string path;   // Without a query and without escapes.
    std::vector<std::pair<std::string, std::string>> fields;
    bool isOldHTTP = false; // 1.0: knows neither chunks nor connections that are kept.
    bool closes = false;    // The client wants no further answer on this connection.

    // How often a field has been sent, and what it says first; empty if it has not been sent. In names, case
    // does not count.
    std::size_t count(std::string_view name) const;
    std::string value(std::string_view name) const;

    bool announcesBody() const;
};

} // namespace lumarin::service
