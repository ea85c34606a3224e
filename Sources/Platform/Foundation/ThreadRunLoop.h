#pragma once

#include "Platform/Foundation/RunLoop.h"

#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>

namespace platform {

// A run loop on the system's clocks for any thread that has none of its own.
class ThreadRunLoop : public RunLoop {
public:
    void post(std::function<void()> work) override;
    void postAfter(Duration delay, std::function<void()> work) override;
    Duration now() const override;
    std::chrono::system_clock::time_point date() const override;

    // Works on the calling thread until `stop` is called, from any thread; what was not yet due by then is
    // dropped.
    void run();
    void stop();

private:
    using Moment = std::chrono::steady_clock::time_point;

    std::mutex mutex;
    std::condition_variable changed;
    std::multimap<Moment, std::function<void()>> queue;
    bool stopping = false;
};

// A run loop with a thread of its own, joined at the end of its life.
class WorkerThread {
public:
    WorkerThread() : thread([this] { loop.run(); }) {}
    ~WorkerThread() {
        loop.stop();
        thread.join();
    }
    WorkerThread(const WorkerThread&) = delete;
    WorkerThread& operator=(const WorkerThread&) = delete;

    ThreadRunLoop& runLoop() { return loop; }

private:
    ThreadRunLoop loop;
    std::thread thread;
};

} // namespace platform
