#include "Platform/Network/CurlSession.h"

#include "Platform/Network/CurlLoop.h"

#include <algorithm>

namespace platform {
namespace {

class CurlExchange : public HTTPExchange {
public:
    CurlExchange(std::shared_ptr<HTTPEvents> source, std::stop_source canceller,
                 std::shared_ptr<CurlLoop> owner)
        : HTTPExchange(std::move(source)), cancellation(std::move(canceller)), loop(std::move(owner)) {}
    ~CurlExchange() override {
        cancellation.request_stop();
        loop->wake();
    }

private:
    std::stop_source cancellation;
    std::shared_ptr<CurlLoop> loop;
};

} // namespace

CurlSession::CurlSession(HTTPSessionConfiguration chosen,
                         const std::optional<std::filesystem::path>& authority)
    : configuration(chosen),
      trusted(authority ? std::make_shared<TrustedCertificates>(*authority) : nullptr),
      loop(std::make_shared<CurlLoop>(chosen.maximumConnectionsPerHost)) {}

CurlSession::~CurlSession() {
    loop->stop();
}

std::unique_ptr<HTTPExchange> CurlSession::open(HTTPRequest request) {
    auto events = std::make_shared<HTTPEvents>();
    std::stop_source cancellation;
    request.timeout = std::min(request.timeout, configuration.timeoutForRequest);
    try {
        loop->start(
            std::make_unique<CurlTransfer>(std::move(request), events, cancellation.get_token(), trusted));
    } catch (const HTTPError&) {
        events->finish(std::current_exception());
    }
    return std::make_unique<CurlExchange>(std::move(events), std::move(cancellation), loop);
}

} // namespace platform
