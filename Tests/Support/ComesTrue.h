#pragma once

#include <chrono>
#include <thread>

namespace tests {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

// Looks every few milliseconds until `condition` holds. Whether it came to.
template <typename Condition>
bool comesTrue(Condition condition, Clock::duration limit = 10s) {
    for (auto deadline = Clock::now() + limit; Clock::now() < deadline; std::this_thread::sleep_for(5ms))
        if (condition())
            return true;
    return condition();
}

} // namespace tests
