#include "Platform/Network/CurlAddress.h"

#include "Platform/Foundation/HTTPSession.h"

#include <arpa/inet.h>
#include <curl/curl.h>
#include <netinet/in.h>
#include <strings.h>

namespace platform {
namespace {

using Parser = std::unique_ptr<CURLU, decltype(&curl_url_cleanup)>;

std::string part(const Parser& parser, CURLUPart which) {
    char* text = nullptr;
    if (curl_url_get(parser.get(), which, &text, 0) != CURLUE_OK)
        return {};
    const std::unique_ptr<char, decltype(&curl_free)> owner(text, &curl_free);
    return text;
}

bool isLoopbackHost(const std::string& host) {
    in_addr v4{};
    in6_addr v6{};
    if (inet_pton(AF_INET, host.c_str(), &v4) == 1)
        return ntohl(v4.s_addr) >> 24U == IN_LOOPBACKNET;
    if (host.starts_with('[') && inet_pton(AF_INET6, host.substr(1, host.size() - 2).c_str(), &v6) == 1)
        return IN6_IS_ADDR_LOOPBACK(&v6);
    return strcasecmp(host.c_str(), "localhost") == 0;
}

} // namespace

CurlAddress::CurlAddress(const std::string& text, PlainHTTP allowed) {
    const Parser parser(curl_url(), &curl_url_cleanup);
    if (curl_url_set(parser.get(), CURLUPART_URL, text.c_str(), 0) != CURLUE_OK)
        throw HTTPError("“%@” is not a web address.", text);
    url = part(parser, CURLUPART_URL);
    host = part(parser, CURLUPART_HOST);
    isLoopback = isLoopbackHost(host);

    const std::string scheme = part(parser, CURLUPART_SCHEME);
    isSecure = scheme == "https";
    if (!isSecure && scheme != "http")
        throw HTTPError("“%@” is not a web address.", text);
    if (!isSecure && !isLoopback && allowed == PlainHTTP::onLoopback)
        throw HTTPError(
            "The connection to %@ would not be secure: plain HTTP is only allowed to this computer itself.",
            host);
}

} // namespace platform
