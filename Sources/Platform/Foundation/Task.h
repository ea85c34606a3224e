#pragma once

#include "Platform/Foundation/CancellationError.h"
#include "Platform/Foundation/Executor.h"

#include <atomic>
#include <coroutine>
#include <exception>
#include <optional>
#include <stop_token>
#include <utility>

namespace platform {

// What a running task knows of its surroundings. An awaited task starts with a copy of its caller's, so a
// cancellation reaches the innermost wait, and a task that moves to another executor does not move its
// caller.
struct TaskContext {
    Executor* executor = nullptr;
    std::stop_token cancellation;
};

namespace detail {

// A task and its caller race for the task's end: the caller may find it finished before it has itself come to
// rest. Whoever arrives second goes on with the caller. Starting a task by a plain call and not by a
// symmetric transfer keeps the stack flat in a loop of tasks that finish at once, in unoptimised builds too.
enum class Meeting { nobody, callerWaits, taskFinished };

struct PromiseBase {
    TaskContext context;
    std::atomic<Meeting> meeting{Meeting::nobody};
    std::coroutine_handle<> caller;
    Executor* callerExecutor = nullptr;
    std::exception_ptr error;

    struct FinalAwaiter {
        bool await_ready() const noexcept { return false; }
        template <typename Promise>
        void await_suspend(std::coroutine_handle<Promise> self) const noexcept {
            PromiseBase& promise = self.promise();
            if (promise.meeting.exchange(Meeting::taskFinished) != Meeting::callerWaits)
                return;
            if (promise.callerExecutor == promise.context.executor)
                promise.caller.resume();
            else
                promise.callerExecutor->post([caller = promise.caller] { caller.resume(); });
        }
        void await_resume() const noexcept {}
    };

    std::suspend_always initial_suspend() const noexcept { return {}; }
    FinalAwaiter final_suspend() const noexcept { return {}; }
    void unhandled_exception() noexcept { error = std::current_exception(); }
};

template <typename T>
struct Promise;

} // namespace detail

// An operation that may wait. It starts when it is awaited, runs on its caller's executor until it says
// otherwise (`resumeOn`), and its caller always goes on on its own. What it throws reaches its caller.
// Coroutines take their parameters by value: a task outlives the statement that made it.
template <typename T>
class [[nodiscard]] Task {
public:
    using promise_type = detail::Promise<T>;

    explicit Task(std::coroutine_handle<promise_type> coroutine) : handle(coroutine) {}
    Task(Task&& other) noexcept : handle(std::exchange(other.handle, nullptr)) {}
    Task& operator=(Task&& other) noexcept {
        std::swap(handle, other.handle);
        return *this;
    }
    ~Task() {
        if (handle)
            handle.destroy();
    }

    struct Awaiter {
        std::coroutine_handle<promise_type> task;

        bool await_ready() const noexcept { return false; }
        template <typename CallerPromise>
        bool await_suspend(std::coroutine_handle<CallerPromise> caller) {
            promise_type& promise = task.promise();
            promise.context = caller.promise().context;
            promise.caller = caller;
            promise.callerExecutor = promise.context.executor;
            task.resume();
            return promise.meeting.exchange(detail::Meeting::callerWaits) != detail::Meeting::taskFinished;
        }
        T await_resume() {
            promise_type& promise = task.promise();
            if (promise.error)
                std::rethrow_exception(std::move(promise.error));
            return promise.take();
        }
    };

    Awaiter operator co_await() && noexcept { return Awaiter{handle}; }

private:
    std::coroutine_handle<promise_type> handle;
};

namespace detail {

template <typename T>
struct Promise : PromiseBase {
    std::optional<T> value;

    Task<T> get_return_object() { return Task<T>(std::coroutine_handle<Promise>::from_promise(*this)); }
    template <typename Value>
    void return_value(Value&& result) {
        value.emplace(std::forward<Value>(result));
    }
    T take() { return std::move(*value); }
};

template <>
struct Promise<void> : PromiseBase {
    Task<void> get_return_object() { return Task<void>(std::coroutine_handle<Promise>::from_promise(*this)); }
    void return_void() const noexcept {}
    void take() const noexcept {}
};

} // namespace detail

// A running task, to cancel it by. Dropping the handle leaves the task running.
class TaskHandle {
public:
    explicit TaskHandle(std::stop_source source) : cancellation(std::move(source)) {}

    // Any thread. The task's current wait, and each later one, ends with a CancellationError.
    void cancel() { cancellation.request_stop(); }

private:
    std::stop_source cancellation;
};

// Starts `task` on `executor`, after what was posted there before. A CancellationError that leaves the task
// ends it quietly; any other exception is a fault of the program and ends it.
TaskHandle spawn(Executor& executor, Task<void> task);

// co_await resumeOn(executor): the task goes on there.
struct resumeOn {
    explicit resumeOn(Executor& target) : executor(target) {}

    bool await_ready() const noexcept { return false; }
    template <typename Promise>
    bool await_suspend(std::coroutine_handle<Promise> self) {
        TaskContext& context = self.promise().context;
        if (context.executor == &executor)
            return false;
        context.executor = &executor;
        executor.post([self] { self.resume(); });
        return true;
    }
    void await_resume() const noexcept {}

private:
    Executor& executor;
};

// co_await currentContext(): a copy of the running task's context.
struct currentContext {
    bool await_ready() const noexcept { return false; }
    template <typename Promise>
    bool await_suspend(std::coroutine_handle<Promise> self) {
        context = self.promise().context;
        return false;
    }
    TaskContext await_resume() { return std::move(context); }

private:
    TaskContext context;
};

// co_await checkCancellation(): throws CancellationError when the running task has been cancelled.
struct checkCancellation {
    bool await_ready() const noexcept { return false; }
    template <typename Promise>
    bool await_suspend(std::coroutine_handle<Promise> self) {
        cancelled = self.promise().context.cancellation.stop_requested();
        return false;
    }
    void await_resume() const {
        if (cancelled)
            throw CancellationError();
    }

private:
    bool cancelled = false;
};

// co_await ignoreCancellation(): from here on neither the running task nor what it awaits is interrupted. Its
// caller is not affected.
struct ignoreCancellation {
    bool await_ready() const noexcept { return false; }
    template <typename Promise>
    bool await_suspend(std::coroutine_handle<Promise> self) {
        self.promise().context.cancellation = {};
        return false;
    }
    void await_resume() const noexcept {}
};

} // namespace platform
