#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <optional>

namespace lumarin::service {

// How a model server has done. One that fails is left alone for a while, longer each time. For one thread.
class UpstreamHealth {
public:
    using Clock = std::chrono::steady_clock;

    // Whether the last translation that was asked of it has begun.
    bool isWell() const { return failuresInARow == 0; }
    // Whether it is its turn to be asked.
    bool mayBeAsked(Clock::time_point now) const { return now >= restsUntil; }

    void ask(Clock::time_point now) {
        if (!isWell()) // One at a time finds out whether it has recovered.
            restsUntil = now + rest();
    }
    void succeed() {
        ++translations;
        failuresInARow = 0;
        restsUntil = {};
    }
    // `wish` is how long it has asked to be left alone.
    void fail(Clock::time_point now, std::optional<std::chrono::seconds> wish) {
        ++failures;
        ++failuresInARow;
        restsUntil = now + std::max(rest(), wish.value_or(std::chrono::seconds{}));
    }

    std::uint64_t translations = 0; // That have begun.
    std::uint64_t failures = 0;

private:
    std::chrono::seconds rest() const {
        constexpr int mostDoublings = 6; // About a minute.
        return std::chrono::seconds(1 << std::min(failuresInARow - 1, mostDoublings));
    }

    int failuresInARow = 0;
    Clock::time_point restsUntil;
};

} // namespace lumarin::service
