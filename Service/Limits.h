#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

namespace lumarin::service {

// How much is translated for one device, for one address, since a device's name is whatever a client says it
// is, and for all of them together. For one thread.
class Limits {
public:
    using Clock = std::chrono::steady_clock;

    // Zero is no limit.
    struct Amount {
        int perMinute = 0; // As many may come at once.
        int atOnce = 0;
    };

    // Counts a translation as under way for as long as it lives.
    class Pass {
    public:
        Pass(Pass&& other) noexcept
            : limits(std::exchange(other.limits, nullptr)),
              device(std::move(other.device)),
              address(std::move(other.address)) {}
        Pass& operator=(Pass&&) = delete;
        ~Pass();

    private:
        friend class Limits;
        Pass(Limits& admitting, std::string name, std::string from)
            : limits(&admitting), device(std::move(name)), address(std::move(from)) {}

        Limits* limits;
        std::string device;
        std::string address;
    };

    Limits(Amount overall, Amount perAddress, Amount perDevice)
        : everybody{overall}, addresses{perAddress}, devices{perDevice} {}

    // Throws a Refusal that says when to try again.
    Pass admit(const std::string& device, const std::string& address, Clock::time_point now = Clock::now());

    std::size_t underWay() const;
    std::size_t knownDevices() const;

private:
    // When, at the allowed rate, all that has been admitted would have come one by one.
    struct Usage {
        Clock::time_point evenly;
        int underWay = 0;
    };

    // Those who may use as much each.
    struct Group {
        static constexpr std::size_t fewNames = 1024;

        Amount each;
        std::unordered_map<std::string, Usage> usage = {};
        std::size_t worthCleaning = fewNames;
    };
    // What a refusal says, and the word for it in the log and the counters.
    struct Sentences {
        const char* tooManyAtOnce;
        const char* atOnce;
        const char* tooMany;
        const char* rate;
    };

    static void check(const Group& group, const std::string& name, Clock::time_point now,
                      const Sentences& sentences);
    static std::optional<Clock::duration> wait(const Amount& amount, const Usage& usage,
                                               Clock::time_point now);
    static void count(Group& group, const std::string& name, Clock::time_point now);
    static void forgetIdle(Group& group, Clock::time_point now);

    Group everybody; // Of a single member.
    Group addresses;
    Group devices;
};

} // namespace lumarin::service
