#include "Platform/Updates/FeedHistory.h"

#include "Platform/Updates/UpdateError.h"

#include <algorithm>

namespace platform {
namespace {

constexpr const char* defaultsKey = "Lumarin.updateFeed";

// Of "2026-11-16T18:35:58Z https://updates.example/appcast.xml" the moment; empty for another feed's address,
// which has a history of its own, and for what earlier programs wrote.
std::string momentIn(const std::string& value, const std::string& address) {
    const auto end = value.find(' ');
    return end != std::string::npos && value.substr(end + 1) == address ? value.substr(0, end) : "";
}

} // namespace

void refuseOlderFeed(UserDefaults& keptIn, const std::string& address, const std::string& signedAt,
                     const std::string& now) {
    const std::string value = keptIn.string(defaultsKey).value_or("");
    const std::string seen = momentIn(value, address);
    if (signedAt < seen)
        throw UpdateError("updates.error.older_feed", signedAt.substr(0, signedAt.find('T')));
    // A list from a computer whose clock is ahead must not have the ones after it refused.
    const std::string fresh = std::max(seen, std::min(signedAt, now)) + " " + address;
    if (fresh != value)
        keptIn.set(defaultsKey, fresh);
}

} // namespace platform
