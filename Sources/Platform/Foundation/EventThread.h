#pragma once

#include "Platform/Foundation/Descriptor.h"
#include "Platform/Foundation/Task.h"

#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

#include <poll.h>

namespace platform {

using Moment = std::chrono::steady_clock::time_point;

// A thread of its own for a connection: an executor that also hands out the events that come on a descriptor,
// and on which tasks wait for what the events change. Idle, it sleeps until an event or work arrives.
class EventThread : public Executor {
public:
    // Where the events come from; called on the thread alone.
    class Source {
    public:
        virtual ~Source() = default;
        // Readable when something has come.
        virtual int descriptor() const = 0;
        // Hands out what has come, without waiting and without resuming tasks. False: nothing had.
        virtual bool dispatch() = 0;
        // Sends what has been written; called before each sleep.
        virtual void flush() = 0;
        // Nothing will come any more, for good.
        virtual bool isBroken() const = 0;
    };

    EventThread();
    ~EventThread() override;
    EventThread(const EventThread&) = delete;
    EventThread& operator=(const EventThread&) = delete;

    // The source outlives the thread's run, which `stop` ends.
    void start(Source& source);

    // Ends all waits, lets the work posted so far finish and joins the thread.
    void stop();

    void post(std::function<void()> work) override;
    void postAfter(Duration delay, std::function<void()> work) override;

    // What follows belongs to the thread.

    // It is coming to its end, or the source is broken.
    bool isOver() const { return over; }

    class Condition;
    // co_await until(condition, deadline): goes on as soon as the condition holds after an event or a piece
    // of work, at the deadline, or when the thread ends or the source breaks; cancellation does not end it.
    // Gives whether the condition holds.
    Condition until(std::function<bool()> condition, Moment deadline);
    Condition until(std::function<bool()> condition, Duration limit);
    // The same, until something can be done with another descriptor: `event` is POLLIN or POLLOUT. It stays
    // open meanwhile.
    Condition ready(int descriptor, short event, Moment deadline);

private:
    void run();
    bool work();
    bool dispatch();
    bool resumeWaiting();
    void rest();

    files::Descriptor wakeup;
    Source* source = nullptr;
    std::vector<Condition*> waiting;
    bool ending = false;
    bool over = false;

    std::mutex mutex;
    std::multimap<Moment, std::function<void()>> queue;
    std::thread thread;
};

class EventThread::Condition {
public:
    Condition(EventThread& owner, std::function<bool()> test, Moment latest, pollfd awaited = {-1, 0, 0})
        : thread(owner), condition(std::move(test)), deadline(latest), source(awaited) {}

    bool await_ready() const { return isOver(); }
    void await_suspend(std::coroutine_handle<> self) {
        task = self;
        thread.waiting.push_back(this);
    }
    bool await_resume() const { return condition(); }

private:
    friend class EventThread;
    bool isOver() const { return thread.over || condition() || deadline <= std::chrono::steady_clock::now(); }

    EventThread& thread;
    std::function<bool()> condition;
    Moment deadline;
    pollfd source;
    std::coroutine_handle<> task;
};

} // namespace platform
