#pragma once

#include "Platform/Network/CurlAddress.h"
#include "Service/Engine/TranslationEngine.h"
#include "Service/Upstream/ChatStream.h"
#include "Service/Upstream/Upstream.h"

#include <array>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <optional>
#include <string>

namespace lumarin::service {

// One translation by the model server. Dropping it closes its connection at once, unless the answer is
// complete.
class UpstreamTransfer final : public Translation {
public:
    // `configuration` and `pool` outlive the transfer. `textLength` in bytes. Throws a Refusal.
    UpstreamTransfer(const UpstreamConfiguration& configuration, UpstreamConnections& pool, std::string json,
                     std::size_t textLength, Clock::time_point end);
    ~UpstreamTransfer() override;
    UpstreamTransfer(const UpstreamTransfer&) = delete;
    UpstreamTransfer& operator=(const UpstreamTransfer&) = delete;

    Progress next() override;
    boost::asio::awaitable<void> wait(Clock::time_point moment) override;
    boost::asio::awaitable<void> finish() override;

private:
    template <typename Value>
    void set(CURLoption option, Value value);
    void addHeader(const std::string& line);
    void setUp();
    void perform();
    boost::asio::awaitable<void> awaitConnection(Clock::time_point moment);
    void checkTime() const;
    void checkAnswer();
    long status() const;
    bool receive(std::string_view bytes);

    static std::size_t onHeader(char* bytes, std::size_t, std::size_t length, void* self) noexcept;
    static std::size_t onBody(char* bytes, std::size_t, std::size_t length, void* self) noexcept;
    static CURLcode onTLSContext(CURL*, void* context, void* certificates) noexcept;

    const UpstreamConfiguration& settings;
    UpstreamConnections& connections;
    const Clock::time_point deadline;
    const std::string body;
    const platform::CurlAddress address;

    ChatStream stream;
    std::string refusal; // The body of an answer other than success.
    std::size_t received = 0;
    std::size_t roomLeft; // For pieces, in bytes.
    Clock::time_point lastByte = Clock::now();
    std::optional<CURLcode> result;
    std::array<char, CURL_ERROR_SIZE> detail{};
    platform::CurlList headers;
    platform::CurlEasy easy;
    std::unique_ptr<UpstreamConnection> connection;
    std::optional<boost::asio::posix::stream_descriptor> readiness; // Of the connection, which owns it.
};

} // namespace lumarin::service
