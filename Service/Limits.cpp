#include "Service/Limits.h"

#include "Service/Engine/Refusal.h"

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

Limits::Pass Limits::admit(const std::string& device, const std::string& address, Clock::time_point now) {
    check(devices, device, now,
          {"This computer has too many translations under way.", "device at once",
           "This computer asks for too many translations.", "device rate"});
    check(addresses, address, now,
          {"Too many translations for this address are under way.", "address at once",
           "This address asks for too many translations.", "address rate"});
    check(everybody, {}, now,
          {"The translation service is busy.", "at once", "The translation service is busy.", "rate"});
    count(devices, device, now);
    count(addresses, address, now);
    count(everybody, {}, now);
    return {*this, device, address};
}

Limits::Pass::~Pass() {
    if (!limits)
        return;
    --limits->devices.usage[device].underWay;
    --limits->addresses.usage[address].underWay;
    --limits->everybody.usage[{}].underWay;
}

std::size_t Limits::underWay() const {
    const auto all = everybody.usage.find({});
    return all != everybody.usage.end() ? static_cast<std::size_t>(all->second.underWay) : 0;
}

std::size_t Limits::knownDevices() const {
    return devices.usage.size();
}

void Limits::check(const Group& group, const std::string& name, Clock::time_point now,
                   const Sentences& sentences) {
    const auto known = group.usage.find(name);
    const Usage used = known != group.usage.end() ? known->second : Usage{};
    if (group.each.atOnce > 0 && used.underWay >= group.each.atOnce)
        refuse(sentences.tooManyAtOnce, sentences.atOnce, afterOneUnderWay);
    if (const auto time = wait(group.each, used, now))
        refuse(sentences.tooMany, sentences.rate, *time);
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

void Limits::count(Group& group, const std::string& name, Clock::time_point now) {
    if (group.usage.size() >= group.worthCleaning)
        forgetIdle(group, now);
    Usage& usage = group.usage[name];
    ++usage.underWay;
    if (group.each.perMinute > 0)
        usage.evenly = std::max(usage.evenly, now) + Clock::duration(1min) / group.each.perMinute;
}

// Who has nothing under way and has used up nothing is as good as one never seen. As everybody remembered has
// been admitted within the overall rate, there are never many.
void Limits::forgetIdle(Group& group, Clock::time_point now) {
    std::erase_if(group.usage,
                  [&](const auto& each) { return each.second.underWay == 0 && each.second.evenly <= now; });
    group.worthCleaning = std::max(Group::fewNames, 2 * group.usage.size());
}

} // namespace lumarin::service
