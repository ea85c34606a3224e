#include "Service/Limits.h"

#include "Service/Engine/Refusal.h"

#include <gtest/gtest.h>
#include <vector>

using namespace lumarin::service;
using namespace std::chrono_literals;

namespace {

// Why a device is refused, and for how long; nothing if it is not.
std::pair<std::string, int> refusal(Limits& limits, const std::string& device, Limits::Clock::time_point now,
                                    const std::string& address = "1") {
    try {
        limits.admit(device, address, now);
        return {};
    } catch (const Refusal& refused) {
        EXPECT_EQ(refused.status, 429);
        EXPECT_LE(std::string(refused.what()).size(), 100U); // As much as is shown.
        return {refused.cause, static_cast<int>(refused.retryAfter.value().count())};
    }
}

using Refused = std::pair<std::string, int>;

} // namespace

TEST(Limits, HoldADeviceToItsRateAndAllToTheirs) {
    Limits limits({.perMinute = 10, .atOnce = 0}, {}, {.perMinute = 6, .atOnce = 0});
    const auto start = Limits::Clock::now();
    for (int number = 0; number < 6; ++number)
        EXPECT_EQ(refusal(limits, "a", start), Refused()) << number;
    EXPECT_EQ(refusal(limits, "a", start), Refused("device rate", 10));
    EXPECT_EQ(refusal(limits, "a", start + 9s), Refused("device rate", 1));
    for (int number = 0; number < 4; ++number)
        EXPECT_EQ(refusal(limits, "b", start), Refused()) << number;
    EXPECT_EQ(refusal(limits, "b", start), Refused("rate", 6));
    EXPECT_EQ(refusal(limits, "a", start + 10s), Refused());
    EXPECT_EQ(refusal(limits, "a", start + 10s), Refused("device rate", 10));
}

TEST(Limits, CountWhatIsUnderWay) {
    Limits limits({.perMinute = 0, .atOnce = 4}, {.perMinute = 4, .atOnce = 3},
                  {.perMinute = 0, .atOnce = 2});
    const auto now = Limits::Clock::now();
    {
        std::vector<Limits::Pass> passes;
        passes.push_back(limits.admit("a", "1", now));
        passes.push_back(limits.admit("a", "1", now));
        EXPECT_EQ(refusal(limits, "a", now).first, "device at once");
        passes.push_back(limits.admit("b", "1", now));
        // However many devices an address invents.
        EXPECT_EQ(refusal(limits, "c", now).first, "address at once");
        passes.push_back(limits.admit("c", "2", now));
        EXPECT_EQ(refusal(limits, "d", now, "2").first, "at once");
        EXPECT_EQ(limits.underWay(), 4U);
    }
    EXPECT_EQ(refusal(limits, "b", now), Refused());
    EXPECT_EQ(refusal(limits, "d", now), Refused("address rate", 15));
    EXPECT_EQ(limits.underWay(), 0U);
}

TEST(Limits, ForgetDevicesThatInventTheirNames) {
    Limits limits({}, {}, {.perMinute = 60, .atOnce = 4});
    auto now = Limits::Clock::now();
    for (int number = 0; number < 100'000; ++number, now += 1ms)
        limits.admit("device " + std::to_string(number), "1", now);
    EXPECT_LT(limits.knownDevices(), 5'000U);
}
