#pragma once

#include <chrono>
#include <cstddef>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

namespace lumarin::service {

// How much is translated for one device and for all of them together. For any thread.
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
            : limits(std::exchange(other.limits, nullptr)), device(std::move(other.device)) {}
        Pass& operator=(Pass&&) = delete;
        ~Pass();

    private:
        friend class Limits;
        Pass(Limits& admitting, std::string name) : limits(&admitting), device(std::move(name)) {}

        Limits* limits;
        std::string device;
    };

    Limits(Amount overall, Amount perDevice) : forAll(overall), forDevice(perDevice) {}

    // Throws a Refusal that says when to try again.
    Pass admit(const std::string& device, Clock::time_point now = Clock::now());

    std::size_t underWay() const;
    std::size_t knownDevices() const;

private:
    // When, at the allowed rate, all that has been admitted would have come one by one.
    struct Usage {
        Clock::time_point evenly;
        int underWay = 0;
    };

    static std::optional<Clock::duration> wait(const Amount& amount, const Usage& usage,
                                               Clock::time_point now);
    static void count(const Amount& amount, Usage& usage, Clock::time_point now);
    void forgetIdle(Clock::time_point now);

    const Amount forAll;
    const Amount forDevice;
    mutable std::mutex mutex;
    Usage all;
    std::unordered_map<std::string, Usage> devices;
    std::size_t worthCleaning = 1024;
};

} // namespace lumarin::service
