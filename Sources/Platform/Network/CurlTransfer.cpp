#include "Platform/Network/CurlTransfer.h"

#include "Platform/Network/CurlErrors.h"

#include <algorithm>

namespace platform {
namespace {

using namespace std::chrono_literals;

// A reader that has read what it wanted leaves just before the end of the answer arrives. So much time for
// that saves the connection for the next request.
constexpr auto graceForTheEnd = 20ms;

// Of all heads and trailers of an answer in bytes; libcurl's own limit is not that of every version.
constexpr std::size_t maximumHeadLength = std::size_t{256} * 1024;

// A line break would begin another header, or end the head.
void refuseControls(const std::string& name, const std::string& value) {
    if (std::ranges::any_of(value, [](unsigned char byte) { return byte < 0x20 || byte == 0x7F; }))
        throw HTTPError("The request’s header %@ holds a line break or another control character.", name);
}

} // namespace

CurlTransfer::CurlTransfer(HTTPRequest sent, std::shared_ptr<HTTPEvents> reported, std::stop_token dropped,
                           std::shared_ptr<const TrustedCertificates> trusted)
    : request(std::move(sent)),
      address(request.url),
      events(std::move(reported)),
      cancellation(std::move(dropped)),
      trustedCertificates(std::move(trusted)),
      easy(curl_easy_init()) {
    if (!easy)
        throw std::bad_alloc();
    setRequest();
    setConnection();
    setCallbacks();
}

CurlTransfer::Moment CurlTransfer::deadline() {
    if (!cancellation.stop_requested())
        return lastTraffic + request.timeout;
    if (!cancelledAt)
        cancelledAt = std::chrono::steady_clock::now();
    return headIsReported ? *cancelledAt + graceForTheEnd : *cancelledAt;
}

void CurlTransfer::abandon() {
    // Where the connection is shared, libcurl may keep the end of a stream back until it next sends
    // something; and one that has stalled may be dead.
    set(CURLOPT_FORBID_REUSE, 1L);
}

void CurlTransfer::finish(CURLcode result) {
    if (result == CURLE_OK)
        events->finish();
    else
        fail(curlError(result, easy.get(), address.host, detail.data()));
}

void CurlTransfer::fail(const HTTPError& error) {
    events->finish(std::make_exception_ptr(error));
}

template <typename Value>
void CurlTransfer::set(CURLoption option, Value value) {
    if (const CURLcode code = curl_easy_setopt(easy.get(), option, value); code != CURLE_OK)
        throw HTTPError(curl_easy_strerror(code));
}

void CurlTransfer::setRequest() {
    set(CURLOPT_URL, address.url.c_str());
    if (request.method == "HEAD") {
        set(CURLOPT_NOBODY, 1L);
    } else if (request.method == "POST") {
        set(CURLOPT_POST, 1L);
        set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body.size()));
        set(CURLOPT_POSTFIELDS, request.body.c_str());
    }
    // Without this a long body would wait for the server's leave.
    std::vector<std::string> lines{"Expect:"};
    for (const auto& [name, value] : request.headers) {
        refuseControls(name, value);
        lines.push_back(name + ": " + value);
    }
    for (const std::string& line : lines) {
        curl_slist* longer = curl_slist_append(headers.get(), line.c_str());
        if (!longer)
            throw std::bad_alloc();
        static_cast<void>(headers.release());
        headers.reset(longer);
    }
    set(CURLOPT_HTTPHEADER, headers.get());
}

void CurlTransfer::setConnection() {
    set(CURLOPT_NOSIGNAL, 1L);
    // A transfer that ends while its host is looked up leaves the look-up behind. Waiting for it would hold
    // up all other transfers, and it can take as long as the name server likes.
    set(CURLOPT_QUICK_EXIT, 1L);
    set(CURLOPT_TCP_NODELAY, 1L);
    set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
    // A request made while the first connection is still being set up shares it, if it turns out that it can.
    set(CURLOPT_PIPEWAIT, 1L);
    set(CURLOPT_HTTP09_ALLOWED, 1L);
    set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    if (address.isLoopback)
        set(CURLOPT_PROXY, "");

    set(CURLOPT_PROTOCOLS_STR, "https,http");
    set(CURLOPT_REDIR_PROTOCOLS_STR, "https");
    set(CURLOPT_FOLLOWLOCATION, address.isSecure ? 1L : 0L);
    set(CURLOPT_MAXREDIRS, 5L);

    // From the folder of authorities only those are read that are needed, from their one file all of them.
    if (curl_version_info(CURLVERSION_NOW)->capath)
        set(CURLOPT_CAINFO, nullptr);
    // Whatever the system's own configuration still allows.
    set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    set(CURLOPT_SSL_VERIFYPEER, 1L);
    set(CURLOPT_SSL_VERIFYHOST, 2L);
    if (trustedCertificates) {
        // A cached store would take the place of the one that the certificates are added to.
        set(CURLOPT_CA_CACHE_TIMEOUT, 0L);
        set(CURLOPT_SSL_CTX_DATA, trustedCertificates.get());
        set(CURLOPT_SSL_CTX_FUNCTION, &onTLSContext);
    }
}

void CurlTransfer::setCallbacks() {
    set(CURLOPT_PRIVATE, this);
    set(CURLOPT_ERRORBUFFER, detail.data());
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_HEADERFUNCTION, &onHeader);
    set(CURLOPT_WRITEDATA, this);
    set(CURLOPT_WRITEFUNCTION, &onBody);
    // The one place that sees the bytes of both directions at the time they pass.
    set(CURLOPT_VERBOSE, 1L);
    set(CURLOPT_DEBUGDATA, this);
    set(CURLOPT_DEBUGFUNCTION, &onTraffic);
}

bool CurlTransfer::receiveHeaderLine(std::string_view line) {
    headLength += line.size();
    if (headLength > maximumHeadLength) {
        abandon();
        return false;
    }
    const bool isEndOfHead = line == "\r\n" || line == "\n";
    if (!isEndOfHead || headIsReported) // after the head, these are the trailers
        return true;
    long status = 0;
    curl_easy_getinfo(easy.get(), CURLINFO_RESPONSE_CODE, &status);
    curl_header* location = nullptr;
    const bool isRedirect =
        address.isSecure && status >= 300 && status < 400
        && curl_easy_header(easy.get(), "Location", 0, CURLH_HEADER, -1, &location) == CURLHE_OK
        && *location->value != '\0';
    if (status >= 200 && !isRedirect)
        report(HTTPResponse{static_cast<int>(status)});
    return true;
}

bool CurlTransfer::receiveBody(std::string_view piece) {
    if (!headIsReported)
        report(HTTPResponse{});
    // Also checked here, where a server may be faster than the reader.
    received += piece.size();
    if (received > request.maximumBodyLength) {
        abandon();
        return false;
    }
    events->push(std::string(piece));
    return true;
}

void CurlTransfer::report(HTTPResponse head) {
    headIsReported = true;
    events->push(head);
}

std::size_t CurlTransfer::onHeader(char* bytes, std::size_t, std::size_t length, void* self) noexcept {
    return static_cast<CurlTransfer*>(self)->receiveHeaderLine({bytes, length}) ? length
                                                                                : CURL_WRITEFUNC_ERROR;
}

std::size_t CurlTransfer::onBody(char* bytes, std::size_t, std::size_t length, void* self) noexcept {
    return static_cast<CurlTransfer*>(self)->receiveBody({bytes, length}) ? length : CURL_WRITEFUNC_ERROR;
}

int CurlTransfer::onTraffic(CURL*, curl_infotype kind, char*, std::size_t, void* self) noexcept {
    auto& transfer = *static_cast<CurlTransfer*>(self);
    if (kind == CURLINFO_HEADER_OUT)
        transfer.requestIsOut = true;
    // Once the request is out, what TLS reads may belong to another transfer on the same connection.
    const bool isOfTLS = kind == CURLINFO_SSL_DATA_IN || kind == CURLINFO_SSL_DATA_OUT;
    if (kind != CURLINFO_TEXT && !(isOfTLS && transfer.requestIsOut))
        transfer.lastTraffic = std::chrono::steady_clock::now();
    return 0;
}

CURLcode CurlTransfer::onTLSContext(CURL*, void* context, void* certificates) noexcept {
    static_cast<const TrustedCertificates*>(certificates)->addTo(static_cast<ssl_ctx_st*>(context));
    return CURLE_OK;
}

} // namespace platform
