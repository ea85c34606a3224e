#pragma once

#include <string>

namespace platform {

// A web address as libcurl itself reads it, so that what is checked here is what is asked there.
struct CurlAddress {
    // Where an address may be asked by plain HTTP.
    enum class PlainHTTP { onLoopback, everywhere };

    // Throws HTTPError for what is no web address, and for one that must not be asked.
    explicit CurlAddress(const std::string& text, PlainHTTP allowed = PlainHTTP::onLoopback);

    std::string url;
    std::string host;
    bool isSecure = false;
    bool isLoopback = false;
};

} // namespace platform
