#include "Service/Upstream/UpstreamConnections.h"

#include <algorithm>
#include <new>

namespace lumarin::service {
namespace {

// After a rush most connections are not needed for long.
constexpr std::chrono::minutes idleTime{1};

} // namespace

platform::CurlMulti UpstreamConnections::take() {
    {
        std::lock_guard lock(mutex);
        if (!idle.empty()) {
            platform::CurlMulti handle = std::move(idle.back().handle);
            idle.pop_back();
            return handle;
        }
    }
    platform::CurlMulti handle(curl_multi_init());
    if (!handle)
        throw std::bad_alloc();
    return handle;
}

void UpstreamConnections::giveBack(platform::CurlMulti handle) {
    const auto now = Clock::now();
    std::vector<Idle> old;
    std::lock_guard lock(mutex);
    idle.push_back({std::move(handle), now});
    const auto fresh =
        std::ranges::find_if(idle, [&](const Idle& each) { return now - each.since < idleTime; });
    old.assign(std::make_move_iterator(idle.begin()), std::make_move_iterator(fresh));
    idle.erase(idle.begin(), fresh);
}

} // namespace lumarin::service
