#include "Platform/Headless/ManualRunLoop.h"

namespace platform::headless {

void ManualRunLoop::post(std::function<void()> work) {
    postAfter(Duration::zero(), std::move(work));
}

void ManualRunLoop::postAfter(Duration delay, std::function<void()> work) {
    std::lock_guard lock(mutex);
    queue.emplace(time + delay, std::move(work));
}

Duration ManualRunLoop::now() const {
    std::lock_guard lock(mutex);
    return time;
}

std::chrono::system_clock::time_point ManualRunLoop::date() const {
    using namespace std::chrono;
    // Monday, 16 November 2026, 18:35:58 UTC, plus what has passed since.
    return system_clock::from_time_t(1794854158) + duration_cast<system_clock::duration>(now());
}

void ManualRunLoop::advance(Duration duration) {
    const Duration end = now() + duration;
    while (auto work = takeNext(end))
        work();
    std::lock_guard lock(mutex);
    time = std::max(time, end);
}

void ManualRunLoop::drain(Duration limit) {
    const Duration end = now() + limit;
    while (auto work = takeNext(end))
        work();
}

std::function<void()> ManualRunLoop::takeNext(Duration until) {
    std::lock_guard lock(mutex);
    auto next = queue.begin();
    if (next == queue.end() || next->first > until)
        return nullptr;
    time = std::max(time, next->first);
    auto work = std::move(next->second);
    queue.erase(next);
    return work;
}

} // namespace platform::headless
