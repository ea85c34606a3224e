#include "Service/Upstream/UpstreamRefusals.h"

#include "Service/Upstream/UpstreamError.h"

#include <algorithm>

namespace lumarin::service {
namespace {

using namespace std::chrono_literals;

constexpr int notFound = 404;
constexpr int tooManyRequests = 429;
constexpr int unavailable = 503;
constexpr int gatewayTimeout = 504;
constexpr std::chrono::seconds longestWait = 1h;

Refusal unknownModel(const std::string& model, const std::string& number) {
    return {badGateway,
            model.empty() ? "The model server wants a model that it knows, by the service’s --model" + number
                          : "The model server does not know the model “" + model + "”" + number,
            "unknown model"};
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
        return {badGateway, "The model server cannot be trusted. " + sentence, "untrusted"};
    case CURLE_WRITE_ERROR:
        return {badGateway, "The model server’s response is too long.", "senseless answer"};
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
        return {badGateway, "The model server refused the service’s key" + number, "refused key"};
    const bool isBusy = status == tooManyRequests || status == unavailable;
    const auto error = UpstreamError::in(body);
    Refusal refusal =
        error.isAboutUnknownModel(status) ? unknownModel(model, number)
        : status == notFound
            ? Refusal(badGateway,
                      "There is no chat-completions endpoint at the service’s --upstream" + number,
                      "no endpoint")
        : status == tooManyRequests
            ? Refusal(tooManyRequests, "The model server has too much to do" + number, "upstream rate")
        : status == unavailable
            ? Refusal(unavailable, "The model server is not ready" + number, "upstream error")
        : status >= 500
            ? Refusal(badGateway, "The model server failed" + number, "upstream error")
            : Refusal(badGateway, "The model server refused the request" + number, "refused request");
    refusal.quotation = error.message;
    if (isBusy)
        refusal.retryAfter = retryAfter > 0s ? std::min(retryAfter, longestWait) : 1s;
    return refusal;
}

Refusal failedUpstream(const UpstreamError& error) {
    Refusal refusal(badGateway, "The model server failed.", "upstream error");
    refusal.quotation = error.message;
    return refusal;
}

Refusal senselessUpstream() {
    return {badGateway, "The model server’s response makes no sense: is it a chat-completions endpoint?",
            "senseless answer"};
}

Refusal silentUpstream(std::chrono::seconds silence) {
    return {gatewayTimeout,
            "The model server said nothing for " + std::to_string(silence.count()) + " seconds.", "time-out"};
}

Refusal endlessUpstream() {
    return {badGateway, "The model goes on far longer than the text.", "broken off"};
}

Refusal slowUpstream() {
    return {gatewayTimeout, "The model server took too long for this text.", "time-out"};
}

} // namespace lumarin::service
