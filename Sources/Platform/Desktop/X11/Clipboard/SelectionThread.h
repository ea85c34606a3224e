#pragma once

#include "Platform/Desktop/X11/Server/XConnection.h"
#include "Platform/Foundation/Task.h"

#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

namespace platform::desktop {

using Moment = std::chrono::steady_clock::time_point;

// The pasteboard's own thread: an executor that also hands out the events of an X connection, and on which
// tasks wait for what the events change. Idle, it sleeps until an event or work arrives.
class SelectionThread final : public Executor {
public:
    // Throws DisplayError.
    SelectionThread();
    ~SelectionThread() override;

    // Each event is handed to `handler`, on the thread; it must not resume tasks.
    void start(std::function<void(const xcb_generic_event_t&)> handler);

    // Ends all waits, lets the work posted so far finish and joins the thread.
    void stop();

    void post(std::function<void()> work) override;
    void postAfter(Duration delay, std::function<void()> work) override;

    // What follows belongs to the thread.
    const XConnection& x() const { return connection; }

    // The connection has broken, or the thread is coming to its end.
    bool isOver() const { return over; }

    // The server's present time, 0 when the connection is broken.
    Task<xcb_timestamp_t> serverTime();

    class Condition;
    // co_await until(condition, deadline): goes on as soon as the condition holds after an event or a piece
    // of work, at the deadline, or when the thread ends or the connection breaks; cancellation does not end
    // it. Gives whether the condition holds.
    Condition until(std::function<bool()> condition, Moment deadline);
    Condition until(std::function<bool()> condition, Duration limit);

private:
    class Wakeup {
    public:
        Wakeup();
        ~Wakeup();
        Wakeup(const Wakeup&) = delete;
        Wakeup& operator=(const Wakeup&) = delete;
        int descriptor() const { return fd; }
        void signal() const;
        void clear() const;

    private:
        int fd;
    };

    void run();
    bool work();
    bool dispatch();
    bool resumeWaiting();
    void rest();

    XConnection connection;
    Wakeup wakeup;
    std::function<void(const xcb_generic_event_t&)> handler;
    xcb_window_t clockWindow;
    xcb_timestamp_t clockTime = 0;
    std::vector<Condition*> waiting;
    bool ending = false;
    bool over = false;

    std::mutex mutex;
    std::multimap<Moment, std::function<void()>> queue;
    std::thread thread;
};

class SelectionThread::Condition {
public:
    Condition(SelectionThread& owner, std::function<bool()> test, Moment latest)
        : thread(owner), condition(std::move(test)), deadline(latest) {}

    bool await_ready() const { return isOver(); }
    void await_suspend(std::coroutine_handle<> self) {
        task = self;
        thread.waiting.push_back(this);
    }
    bool await_resume() const { return condition(); }

private:
    friend class SelectionThread;
    bool isOver() const { return thread.over || condition() || deadline <= std::chrono::steady_clock::now(); }

    SelectionThread& thread;
    std::function<bool()> condition;
    Moment deadline;
    std::coroutine_handle<> task;
};

} // namespace platform::desktop
