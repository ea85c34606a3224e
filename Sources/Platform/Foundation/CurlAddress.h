#pragma once

#include <string>

namespace platform {

// A web address as libcurl itself reads it, so that what is checked here is what is asked there.
struct CurlAddress {
    // Throws HTTPError for what is no web address, and for one that must not be asked: plain HTTP is for the
    // loopback only.
    explicit CurlAddress(const std::string& text);

    std::string url;
    std::string host;
    bool isSecure = false;
    bool isLoopback = false;
};

} // namespace platform
