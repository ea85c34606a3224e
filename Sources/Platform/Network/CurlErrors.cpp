#include "Platform/Network/CurlErrors.h"

#include <openssl/x509.h>

namespace platform {
namespace {

std::string certificateSentence(CURL* transfer, const std::string& host) {
    long verdict = X509_V_OK;
    curl_easy_getinfo(transfer, CURLINFO_SSL_VERIFYRESULT, &verdict);
    // The name is looked at first, when there is no verdict yet; libcurl's versions say that in two ways.
    if (verdict == X509_V_OK || verdict == X509_V_ERR_UNSPECIFIED)
        return "The server's certificate is not for " + host + " but for another host.";
    return "The certificate of " + host + " is not trusted: " + X509_verify_cert_error_string(verdict) + ".";
}

} // namespace

std::string curlErrorSentence(CURLcode code, CURL* transfer, const std::string& host, const char* detail) {
    switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
        return "The server " + host + " was not found.";
    case CURLE_COULDNT_CONNECT:
        return "Could not connect to " + host + ".";
    case CURLE_PEER_FAILED_VERIFICATION:
        return certificateSentence(transfer, host);
    case CURLE_SSL_CONNECT_ERROR:
        return "A secure connection to " + host + " could not be made.";
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_HTTP2:
    case CURLE_HTTP2_STREAM:
        return "The connection to " + host + " was lost.";
    case CURLE_GOT_NOTHING:
        return host + " closed the connection without an answer.";
    case CURLE_PARTIAL_FILE:
        return "The answer of " + host + " ended too early.";
    case CURLE_WRITE_ERROR: // only ever the answer's end to a reader that has had enough
        return "The answer of " + host + " is too long.";
    case CURLE_OPERATION_TIMEDOUT:
        return "The request timed out.";
    case CURLE_TOO_MANY_REDIRECTS:
        return host + " redirected the request too often.";
    case CURLE_UNSUPPORTED_PROTOCOL: // the request's own address has been checked before
        return host + " redirected the request to an address that is not secure.";
    default:
        return *detail != '\0' ? detail : curl_easy_strerror(code);
    }
}

} // namespace platform
