#include "Service/UpstreamRefusals.h"

#include "Platform/Foundation/Text.h"

#include <nlohmann/json.hpp>

namespace lumarin::service {
namespace {

using namespace std::chrono_literals;

constexpr int tooManyRequests = 429;
constexpr int badGateway = 502;
constexpr int unavailable = 503;
constexpr int gatewayTimeout = 504;
constexpr std::size_t longestQuotation = 200; // In characters.
constexpr std::chrono::seconds longestWait = 1h;

// The message of an error's usual forms: {"error": {"message": ...}}, {"error": ...}, {"message": ...}.
std::string messageIn(std::string_view body) {
    const auto parsed = nlohmann::json::parse(body, nullptr, false);
    if (!parsed.is_object())
        return {};
    const auto error = parsed.find("error");
    const auto& holder = error != parsed.end() && error->is_object() ? *error : parsed;
    for (const char* name : {"message", "error", "detail"})
        if (const auto member = holder.find(name); member != holder.end() && member->is_string())
            return platform::text::prefix(member->get<std::string>(), longestQuotation);
    return {};
}

} // namespace

Refusal failedTransfer(CURLcode code, const std::string& sentence) {
    switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_COULDNT_CONNECT:
        return {badGateway, "The model server cannot be reached. " + sentence, "no upstream"};
    case CURLE_OPERATION_TIMEDOUT: // Only connecting is libcurl's to time.
        return {gatewayTimeout, "The model server cannot be reached: it takes no connection.", "no upstream"};
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CONNECT_ERROR:
        return {badGateway, "The model server cannot be trusted. " + sentence, "no upstream"};
    case CURLE_WRITE_ERROR:
        return {badGateway, "The model server's answer is too long.", "senseless answer"};
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_WEIRD_SERVER_REPLY:
        return {badGateway, "The model server does not speak HTTP.", "senseless answer"};
    default:
        return {badGateway, "The model server was lost. " + sentence, "lost"};
    }
}

Refusal refusedByUpstream(int status, const std::string& model, std::string_view body,
                          std::chrono::seconds retryAfter) {
    const std::string number = " (" + std::to_string(status) + ").";
    if (status == 401 || status == 403) // Its words might quote the key.
        return {badGateway, "The model server refused the service's key" + number, "refused key"};
    if (status == 404)
        return {badGateway,
                model.empty() ? "The model server answers nothing at the service's --upstream" + number
                              : "The model server does not know the model “" + model + "”" + number,
                "unknown model"};
    const bool isBusy = status == tooManyRequests || status == unavailable;
    Refusal refusal =
        status == tooManyRequests
            ? Refusal(tooManyRequests, "The model server has too much to do" + number, "upstream rate")
        : status == unavailable
            ? Refusal(unavailable, "The model server is not ready" + number, "upstream error")
        : status >= 500
            ? Refusal(badGateway, "The model server failed" + number, "upstream error")
            : Refusal(badGateway, "The model server refused the request" + number, "refused request");
    refusal.quotation = messageIn(body);
    if (isBusy)
        refusal.retryAfter = retryAfter > 0s ? std::min(retryAfter, longestWait) : 1s;
    return refusal;
}

Refusal silentUpstream(std::chrono::seconds silence) {
    return {gatewayTimeout,
            "The model server said nothing for " + std::to_string(silence.count()) + " seconds.", "time-out"};
}

Refusal slowUpstream() {
    return {gatewayTimeout, "The model server took too long for this text.", "time-out"};
}

} // namespace lumarin::service
