#include "Platform/Foundation/Task.h"

namespace platform {
namespace {

// The outermost frame of a spawned task: nobody awaits it, and it frees itself at its end.
struct Root {
    struct promise_type {
        TaskContext context;

        Root get_return_object() { return {std::coroutine_handle<promise_type>::from_promise(*this)}; }
        std::suspend_always initial_suspend() const noexcept { return {}; }
        std::suspend_never final_suspend() const noexcept { return {}; }
        void return_void() const noexcept {}
        [[noreturn]] void unhandled_exception() const noexcept { std::terminate(); }
    };

    std::coroutine_handle<promise_type> handle;
};

Root run(Task<void> task) {
    try {
        co_await std::move(task);
    } catch (const CancellationError&) {
        // Nobody is left to tell.
    }
}

} // namespace

TaskHandle spawn(Executor& executor, Task<void> task) {
    std::stop_source cancellation;
    auto root = run(std::move(task)).handle;
    root.promise().context = TaskContext{&executor, cancellation.get_token()};
    executor.post([root] { root.resume(); });
    return TaskHandle(std::move(cancellation));
}

} // namespace platform
