#include "Service/Upstream/UpstreamTransfer.h"

#include "Platform/Network/CurlErrors.h"
#include "Service/Support/Async.h"
#include "Service/Upstream/UpstreamRefusals.h"

#include <algorithm>
#include <boost/asio/this_coro.hpp>

namespace lumarin::service {
namespace {

using namespace std::chrono_literals;

constexpr long ok = 200;
constexpr auto connectTime = 5s;
constexpr std::size_t longestAnswer = std::size_t{16} * 1024 * 1024;
constexpr std::size_t enoughOfARefusal = std::size_t{64} * 1024;
// No translation is so much longer than its text: a model that goes on has lost its way.
constexpr std::size_t shortTranslation = std::size_t{16} * 1024;
constexpr std::size_t mostGrowth = 16;
// So much time for the end of an answer that is complete saves the connection for the next one.
constexpr auto graceForTheEnd = 20ms;

} // namespace

UpstreamTransfer::UpstreamTransfer(const UpstreamConfiguration& configuration, UpstreamConnections& pool,
                                   std::string json, std::size_t textLength, Clock::time_point end)
    : settings(configuration),
      connections(pool),
      deadline(end),
      body(std::move(json)),
      address(configuration.url + "/chat/completions", platform::CurlAddress::PlainHTTP::everywhere),
      roomLeft(shortTranslation + mostGrowth * textLength),
      easy(curl_easy_init()),
      connection(pool.take()) {
    if (!easy)
        throw std::bad_alloc();
    setUp();
    curl_multi_add_handle(connection->handle(), easy.get());
}

UpstreamTransfer::~UpstreamTransfer() {
    if (readiness)
        readiness->release();
    curl_multi_remove_handle(connection->handle(), easy.get());
    easy.reset();
    connections.giveBack(std::move(connection));
}

Progress UpstreamTransfer::next() {
    for (bool hasLooked = false;; hasLooked = true) {
        if (auto piece = stream.next()) {
            if (piece->size() > roomLeft)
                throw endlessUpstream();
            roomLeft -= piece->size();
            return {Progress::Kind::piece, std::move(*piece)};
        }
        if (stream.isComplete())
            return {};
        checkAnswer();
        if (hasLooked)
            break;
        // Bytes may have been there all along while a client took its time.
        perform();
    }
    checkTime();
    return {Progress::Kind::nothingYet};
}

asio::awaitable<void> UpstreamTransfer::wait(Clock::time_point moment) {
    return awaitConnection(std::min({moment, deadline, lastByte + settings.silence}));
}

asio::awaitable<void> UpstreamTransfer::finish() {
    for (const auto end = Clock::now() + graceForTheEnd; !result && Clock::now() < end; perform())
        co_await awaitConnection(end);
}

template <typename Value>
void UpstreamTransfer::set(CURLoption option, Value value) {
    if (const CURLcode code = curl_easy_setopt(easy.get(), option, value); code != CURLE_OK)
        throw std::runtime_error(curl_easy_strerror(code));
}

void UpstreamTransfer::addHeader(const std::string& line) {
    curl_slist* longer = curl_slist_append(headers.get(), line.c_str());
    if (!longer)
        throw std::bad_alloc();
    static_cast<void>(headers.release());
    headers.reset(longer);
}

void UpstreamTransfer::setUp() {
    set(CURLOPT_URL, address.url.c_str());
    set(CURLOPT_POST, 1L);
    set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
    set(CURLOPT_POSTFIELDS, body.c_str());
    addHeader("Content-Type: application/json");
    addHeader("Accept: text/event-stream");
    addHeader("Expect:"); // Without this a long body would wait for the server's leave.
    if (!settings.key.empty())
        addHeader("Authorization: Bearer " + settings.key);
    set(CURLOPT_HTTPHEADER, headers.get());
    set(CURLOPT_USERAGENT, "lumarin-service");

    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_QUICK_EXIT, 1L);
    set(CURLOPT_TCP_NODELAY, 1L);
    // One translation a connection, so that to give it up is to close it.
    set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    const auto toConnect = std::min<std::chrono::milliseconds>(connectTime, settings.silence);
    set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(toConnect.count()));
    set(CURLOPT_PROTOCOLS_STR, "https,http");
    if (address.isLoopback)
        set(CURLOPT_PROXY, "");
    set(CURLOPT_SSL_VERIFYPEER, 1L);
    set(CURLOPT_SSL_VERIFYHOST, 2L);
    // A folder of authorities is read as far as needed; reading all of them from a file holds everybody up.
    if (curl_version_info(CURLVERSION_NOW)->capath)
        set(CURLOPT_CAINFO, nullptr);
    if (settings.authorities) {
        // A cached store would take the place of the one that the certificates are added to.
        set(CURLOPT_CA_CACHE_TIMEOUT, 0L);
        set(CURLOPT_SSL_CTX_DATA, settings.authorities.get());
        set(CURLOPT_SSL_CTX_FUNCTION, &onTLSContext);
    }
    set(CURLOPT_ERRORBUFFER, detail.data());
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_HEADERFUNCTION, &onHeader);
    set(CURLOPT_WRITEDATA, this);
    set(CURLOPT_WRITEFUNCTION, &onBody);
}

void UpstreamTransfer::perform() {
    if (result)
        return;
    result = connection->perform();
    if (result == CURLE_OK && status() == ok)
        stream.finish();
}

// Waits until there is something to perform.
asio::awaitable<void> UpstreamTransfer::awaitConnection(Clock::time_point moment) {
    if (!readiness)
        readiness.emplace(co_await asio::this_coro::executor, connection->descriptor());
    co_await isReadable(*readiness, std::min(moment, connection->due()));
}

void UpstreamTransfer::checkTime() const {
    const auto now = Clock::now();
    if (now >= lastByte + settings.silence)
        throw silentUpstream(settings.silence);
    if (now >= deadline)
        throw slowUpstream();
}

// What the upstream has answered instead of a translation.
void UpstreamTransfer::checkAnswer() {
    if (!result)
        return;
    if (const long answered = status(); answered != 0 && answered != ok) {
        curl_off_t retryAfter = 0;
        curl_easy_getinfo(easy.get(), CURLINFO_RETRY_AFTER, &retryAfter);
        throw refusedByUpstream(static_cast<int>(answered), settings.model, refusal,
                                std::chrono::seconds(retryAfter));
    }
    if (*result != CURLE_OK)
        throw failedTransfer(*result,
                             platform::curlError(*result, easy.get(), address.host, detail.data()).what());
}

long UpstreamTransfer::status() const {
    long code = 0;
    curl_easy_getinfo(easy.get(), CURLINFO_RESPONSE_CODE, &code);
    return code;
}

bool UpstreamTransfer::receive(std::string_view bytes) {
    lastByte = Clock::now();
    received += bytes.size();
    if (received > longestAnswer)
        return false;
    if (status() == ok) {
        stream.append(bytes);
        return true;
    }
    refusal += bytes;
    return refusal.size() < enoughOfARefusal;
}

std::size_t UpstreamTransfer::onHeader(char*, std::size_t, std::size_t length, void* self) noexcept {
    static_cast<UpstreamTransfer*>(self)->lastByte = Clock::now();
    return length;
}

std::size_t UpstreamTransfer::onBody(char* bytes, std::size_t, std::size_t length, void* self) noexcept {
    return static_cast<UpstreamTransfer*>(self)->receive({bytes, length}) ? length : CURL_WRITEFUNC_ERROR;
}

CURLcode UpstreamTransfer::onTLSContext(CURL*, void* context, void* certificates) noexcept {
    static_cast<const platform::TrustedCertificates*>(certificates)->addTo(static_cast<ssl_ctx_st*>(context));
    return CURLE_OK;
}

} // namespace lumarin::service
