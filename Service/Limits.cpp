#include "Service/Limits.h"

#include "Service/Refusal.h"

#include <algorithm>

namespace lumarin::service {
namespace {

using namespace std::chrono_literals;

constexpr int tooManyRequests = 429;
constexpr std::chrono::seconds afterOneUnderWay{1};

[[noreturn]] void refuse(const std::string& sentence, const char* cause, Limits::Clock::duration wait) {
    const auto seconds = std::max(std::chrono::ceil<std::chrono::seconds>(wait), std::chrono::seconds(1));
    Refusal refusal(tooManyRequests, sentence + " Try again in " + std::to_string(seconds.count()) + " s.",
                    cause);
    refusal.retryAfter = seconds;
    throw refusal;
}

} // namespace

Limits::Pass Limits::admit(const std::string& device, Clock::time_point now) {
    std::lock_guard lock(mutex);
    const auto known = devices.find(device);
    const Usage used = known != devices.end() ? known->second : Usage{};
    if (forDevice.atOnce > 0 && used.underWay >= forDevice.atOnce)
        refuse("This computer has too many translations under way.", "device at once", afterOneUnderWay);
    if (const auto time = wait(forDevice, used, now))
        refuse("This computer asks for too many translations.", "device rate", *time);
    if (forAll.atOnce > 0 && all.underWay >= forAll.atOnce)
        refuse("The translation service is busy.", "at once", afterOneUnderWay);
    if (const auto time = wait(forAll, all, now))
        refuse("The translation service is busy.", "rate", *time);

    if (devices.size() >= worthCleaning)
        forgetIdle(now);
    count(forAll, all, now);
    count(forDevice, devices[device], now);
    return {*this, device};
}

Limits::Pass::~Pass() {
    if (!limits)
        return;
    std::lock_guard lock(limits->mutex);
    --limits->all.underWay;
    --limits->devices[device].underWay;
}

std::size_t Limits::underWay() const {
    std::lock_guard lock(mutex);
    return static_cast<std::size_t>(all.underWay);
}

std::size_t Limits::knownDevices() const {
    std::lock_guard lock(mutex);
    return devices.size();
}

// How long until one more is within the rate.
std::optional<Limits::Clock::duration> Limits::wait(const Amount& amount, const Usage& usage,
                                                    Clock::time_point now) {
    if (amount.perMinute == 0)
        return std::nullopt;
    const Clock::duration step = Clock::duration(1min) / amount.perMinute;
    const auto left = usage.evenly + step - 1min - now;
    return left > Clock::duration{} ? std::optional(left) : std::nullopt;
}

void Limits::count(const Amount& amount, Usage& usage, Clock::time_point now) {
    ++usage.underWay;
    if (amount.perMinute > 0)
        usage.evenly = std::max(usage.evenly, now) + Clock::duration(1min) / amount.perMinute;
}

// A device without anything under way that has used up nothing is as good as one never seen. As every device
// remembered has been admitted within the overall rate, there are never many.
void Limits::forgetIdle(Clock::time_point now) {
    std::erase_if(devices,
                  [&](const auto& each) { return each.second.underWay == 0 && each.second.evenly <= now; });
    worthCleaning = std::max<std::size_t>(1024, 2 * devices.size());
}

} // namespace lumarin::service
