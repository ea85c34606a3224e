#include "Platform/Foundation/ThreadRunLoop.h"

namespace platform {

void ThreadRunLoop::post(std::function<void()> work) {
    postAfter(Duration::zero(), std::move(work));
}

void ThreadRunLoop::postAfter(Duration delay, std::function<void()> work) {
    // Notifies before it lets go: the work may be what the owner of this waits for to drop it.
    std::lock_guard lock(mutex);
    auto due = std::chrono::steady_clock::now() + std::chrono::duration_cast<Moment::duration>(delay);
    queue.emplace(due, std::move(work));
    changed.notify_one();
}

Duration ThreadRunLoop::now() const {
    return std::chrono::steady_clock::now().time_since_epoch();
}

std::chrono::system_clock::time_point ThreadRunLoop::date() const {
    return std::chrono::system_clock::now();
}

void ThreadRunLoop::run() {
    std::unique_lock lock(mutex);
    while (!stopping) {
        if (queue.empty()) {
            changed.wait(lock);
        } else if (auto next = queue.begin(); next->first > std::chrono::steady_clock::now()) {
            changed.wait_until(lock, Moment(next->first));
        } else {
            auto work = std::move(next->second);
            queue.erase(next);
            lock.unlock();
            work();
            work = nullptr;
            lock.lock();
        }
    }
    stopping = false;
}

void ThreadRunLoop::stop() {
    std::lock_guard lock(mutex);
    stopping = true;
    changed.notify_one();
}

} // namespace platform
