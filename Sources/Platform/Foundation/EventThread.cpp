#include "Platform/Foundation/EventThread.h"

#include <algorithm>
#include <optional>
#include <system_error>

#include <cerrno>

#include <sys/eventfd.h>

namespace platform {

EventThread::EventThread() : wakeup(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
    if (!wakeup.isOpen())
        throw std::system_error(errno, std::generic_category(), "eventfd");
}

EventThread::~EventThread() {
    stop();
}

void EventThread::start(Source& eventSource) {
    source = &eventSource;
    thread = std::thread([this] { run(); });
}

void EventThread::stop() {
    if (!thread.joinable())
        return;
    // Also called while this is destroyed, where calls end here anyway.
    EventThread::post([this] { ending = true; });
    thread.join();
}

void EventThread::post(std::function<void()> work) {
    EventThread::postAfter(Duration::zero(), std::move(work));
}

void EventThread::postAfter(Duration delay, std::function<void()> work) {
    {
        std::lock_guard lock(mutex);
        queue.emplace(std::chrono::steady_clock::now() + delay, std::move(work));
    }
    const std::uint64_t one = 1;
    [[maybe_unused]] auto written = write(wakeup.number(), &one, sizeof one);
}

EventThread::Condition EventThread::until(std::function<bool()> condition, Moment deadline) {
    return {*this, std::move(condition), deadline};
}

EventThread::Condition EventThread::until(std::function<bool()> condition, Duration limit) {
    return until(std::move(condition), std::chrono::steady_clock::now() + limit);
}

EventThread::Condition EventThread::ready(int descriptor, short event, Moment deadline) {
    const pollfd awaited{descriptor, event, 0};
    auto isReady = [awaited] {
        auto asked = awaited;
        return poll(&asked, 1, 0) > 0;
    };
    return {*this, std::move(isReady), deadline, awaited};
}

void EventThread::run() {
    while (!ending) {
        bool active = work();
        active = dispatch() || active;
        active = resumeWaiting() || active;
        if (!active)
            rest();
    }
    over = true;
    while (resumeWaiting() || work())
        ;
}

// Runs what is due. Not more than was due at first, so that events have their turn.
bool EventThread::work() {
    std::vector<std::function<void()>> due;
    {
        std::lock_guard lock(mutex);
        auto end = queue.upper_bound(std::chrono::steady_clock::now());
        for (auto entry = queue.begin(); entry != end; ++entry)
            due.push_back(std::move(entry->second));
        queue.erase(queue.begin(), end);
    }
    for (auto& piece : due)
        piece();
    return !due.empty();
}

bool EventThread::dispatch() {
    if (over)
        return false;
    bool any = source->dispatch();
    over = source->isBroken();
    return any || over;
}

bool EventThread::resumeWaiting() {
    auto first = std::stable_partition(waiting.begin(), waiting.end(),
                                       [](const Condition* wait) { return !wait->isOver(); });
    std::vector<Condition*> done(first, waiting.end());
    waiting.erase(first, waiting.end());
    for (auto* wait : done)
        wait->task.resume();
    return !done.empty();
}

void EventThread::rest() {
    source->flush();
    std::optional<Moment> next;
    {
        std::lock_guard lock(mutex);
        if (!queue.empty())
            next = queue.begin()->first;
    }
    // A broken connection would always be readable.
    std::vector<pollfd> sources{{wakeup.number(), POLLIN, 0}, {over ? -1 : source->descriptor(), POLLIN, 0}};
    for (const auto* wait : waiting) {
        next = next ? std::min(*next, wait->deadline) : wait->deadline;
        sources.push_back(wait->source);
    }

    timespec timeout{};
    if (next) {
        auto left = std::max(Duration::zero(), Duration(*next - std::chrono::steady_clock::now()));
        timeout.tv_sec = static_cast<time_t>(left / std::chrono::seconds(1));
        timeout.tv_nsec = static_cast<long>((left % std::chrono::seconds(1)).count());
    }
    ppoll(sources.data(), sources.size(), next ? &timeout : nullptr, nullptr);
    std::uint64_t count = 0;
    [[maybe_unused]] auto taken = read(wakeup.number(), &count, sizeof count);
}

} // namespace platform
