#include "Platform/Network/CurlErrors.h"

#include <openssl/x509.h>

namespace platform {
namespace {

HTTPError certificateError(CURL* transfer, const std::string& host) {
    long verdict = X509_V_OK;
    curl_easy_getinfo(transfer, CURLINFO_SSL_VERIFYRESULT, &verdict);
    // The name is looked at first, when there is no verdict yet; libcurl's versions say that in two ways.
    if (verdict == X509_V_OK || verdict == X509_V_ERR_UNSPECIFIED)
        return HTTPError("The server’s certificate is not for %@ but for another host.", host);
    switch (verdict) {
    case X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT:
        return HTTPError("The certificate of %@ is not trusted: it is self-signed.", host);
    case X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY:
    case X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE:
        return HTTPError("The certificate of %@ is not trusted: its issuer is unknown.", host);
    case X509_V_ERR_CERT_HAS_EXPIRED:
        return HTTPError("The certificate of %@ has expired.", host);
    case X509_V_ERR_CERT_NOT_YET_VALID:
        return HTTPError("The certificate of %@ is not valid yet.", host);
    default:
        return HTTPError("The certificate of %@ is not trusted: %@.", host,
                         X509_verify_cert_error_string(verdict));
    }
}

} // namespace

HTTPError curlError(CURLcode code, CURL* transfer, const std::string& host, const char* detail) {
    switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
        return HTTPError("The server %@ was not found.", host);
    case CURLE_COULDNT_CONNECT:
        return HTTPError("Could not connect to %@.", host);
    case CURLE_PEER_FAILED_VERIFICATION:
        return certificateError(transfer, host);
    case CURLE_SSL_CONNECT_ERROR:
        return HTTPError("A secure connection to %@ could not be made.", host);
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_HTTP2:
    case CURLE_HTTP2_STREAM:
        return HTTPError("The connection to %@ was lost.", host);
    case CURLE_GOT_NOTHING:
        return HTTPError("%@ closed the connection without a response.", host);
    case CURLE_PARTIAL_FILE:
        return HTTPError("The response from %@ ended too early.", host);
    case CURLE_WRITE_ERROR: // only ever the answer's end to a reader that has had enough
        return HTTPError("The response from %@ is too long.", host);
    case CURLE_OPERATION_TIMEDOUT:
        return HTTPError("The request timed out.");
    case CURLE_TOO_MANY_REDIRECTS:
        return HTTPError("%@ redirected the request too often.", host);
    case CURLE_UNSUPPORTED_PROTOCOL: // the request's own address has been checked before
        return HTTPError("%@ redirected the request to an address that is not secure.", host);
    default:
        return HTTPError("%@", *detail != '\0' ? detail : curl_easy_strerror(code));
    }
}

} // namespace platform
