#pragma once

#include "Platform/Network/CurlAddress.h"
#include "Service/ChatStream.h"
#include "Service/ClientWatch.h"
#include "Service/TranslationEngine.h"
#include "Service/Upstream.h"

#include <array>
#include <curl/curl.h>
#include <optional>
#include <string>

namespace lumarin::service {

// One translation by the model server. Dropping it closes its connection at once, unless the answer is
// complete.
class UpstreamTransfer final : public Translation {
public:
    // `configuration` and `pool` outlive the transfer. Throws a Refusal.
    UpstreamTransfer(const UpstreamConfiguration& configuration, UpstreamConnections& pool, std::string json,
                     const Waiting& waiting);
    ~UpstreamTransfer() override;
    UpstreamTransfer(const UpstreamTransfer&) = delete;
    UpstreamTransfer& operator=(const UpstreamTransfer&) = delete;

    Progress next(Clock::time_point moment) override;

private:
    struct Free {
        void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
        void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    };

    template <typename Value>
    void set(CURLoption option, Value value);
    void addHeader(const std::string& line);
    void setUp();
    void perform();
    void wait(Clock::time_point moment);
    void checkTime(Clock::time_point now) const;
    void checkAnswer();
    void letEnd();
    long status() const;
    bool receive(std::string_view bytes);

    static std::size_t onHeader(char* bytes, std::size_t, std::size_t length, void* self) noexcept;
    static std::size_t onBody(char* bytes, std::size_t, std::size_t length, void* self) noexcept;
    static CURLcode onTLSContext(CURL*, void* context, void* certificates) noexcept;

    const UpstreamConfiguration& settings;
    UpstreamConnections& connections;
    const Clock::time_point deadline;
    const ClientWatch client;
    const std::string body;
    const platform::CurlAddress address;

    ChatStream stream;
    std::string refusal; // The body of an answer other than success.
    std::size_t received = 0;
    Clock::time_point lastByte = Clock::now();
    std::optional<CURLcode> result;
    std::array<char, CURL_ERROR_SIZE> detail{};
    std::unique_ptr<curl_slist, Free> headers;
    std::unique_ptr<CURL, Free> easy;
    UpstreamConnections::Handle multi;
};

} // namespace lumarin::service
