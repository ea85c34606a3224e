#pragma once

#include "Platform/Foundation/HTTPSession.h"
#include "Platform/Network/CurlAddress.h"
#include "Platform/Network/CurlHandles.h"
#include "Platform/Network/TrustedCertificates.h"

#include <array>
#include <stop_token>

namespace platform {

// One request and its answer on a libcurl handle, which reports to the events of an exchange. Made on any
// thread, then used on the thread of its loop alone.
class CurlTransfer {
public:
    using Moment = std::chrono::steady_clock::time_point;

    // `trusted` may be null. Throws HTTPError for an address that must not be asked and a header that cannot
    // be sent.
    CurlTransfer(HTTPRequest sent, std::shared_ptr<HTTPEvents> reported, std::stop_token dropped,
                 std::shared_ptr<const TrustedCertificates> trusted);
    CurlTransfer(const CurlTransfer&) = delete;
    CurlTransfer& operator=(const CurlTransfer&) = delete;

    CURL* handle() const { return easy.get(); }

    // When to abandon the transfer, which is due to be done if the moment has passed. To be asked again after
    // each byte and each cancellation.
    Moment deadline();

    // Has the connection closed with the transfer.
    void abandon();

    // The last report, made once: how the transfer ended.
    void finish(CURLcode result);
    void fail(const HTTPError& error);

private:
    template <typename Value>
    void set(CURLoption option, Value value);
    void setRequest();
    void setConnection();
    void setCallbacks();
    // False where the answer is longer than it may be.
    bool receiveHeaderLine(std::string_view line);
    bool receiveBody(std::string_view piece);
    void report(HTTPResponse head);

    static std::size_t onHeader(char* bytes, std::size_t, std::size_t length, void* self) noexcept;
    static std::size_t onBody(char* bytes, std::size_t, std::size_t length, void* self) noexcept;
    static int onTraffic(CURL*, curl_infotype kind, char*, std::size_t, void* self) noexcept;
    static CURLcode onTLSContext(CURL*, void* context, void* certificates) noexcept;

    const HTTPRequest request;
    const CurlAddress address;
    const std::shared_ptr<HTTPEvents> events;
    const std::stop_token cancellation;
    const std::shared_ptr<const TrustedCertificates> trustedCertificates;

    Moment lastTraffic = std::chrono::steady_clock::now();
    std::optional<Moment> cancelledAt;
    bool requestIsOut = false;
    bool headIsReported = false;
    std::size_t headLength = 0;
    std::size_t received = 0;
    std::array<char, CURL_ERROR_SIZE> detail{};
    CurlList headers;
    CurlEasy easy;
};

} // namespace platform
