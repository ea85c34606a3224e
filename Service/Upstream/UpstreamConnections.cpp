#include "Service/Upstream/UpstreamConnections.h"

#include <algorithm>

namespace lumarin::service {
namespace {

// After a rush most connections are not needed for long.
constexpr std::chrono::minutes idleTime{1};

} // namespace

std::unique_ptr<UpstreamConnection> UpstreamConnections::take() {
    if (idle.empty())
        return std::make_unique<UpstreamConnection>();
    auto connection = std::move(idle.back().connection);
    idle.pop_back();
    return connection;
}

void UpstreamConnections::giveBack(std::unique_ptr<UpstreamConnection> connection) {
    const auto now = Clock::now();
    idle.push_back({std::move(connection), now});
    idle.erase(idle.begin(),
               std::ranges::find_if(idle, [&](const Idle& each) { return now - each.since < idleTime; }));
}

} // namespace lumarin::service
