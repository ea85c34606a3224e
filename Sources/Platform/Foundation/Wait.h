#pragma once

#include "Platform/Foundation/Task.h"

#include <memory>

namespace platform {

// A wait of one task that anybody can end, once, from any thread: `co_await until(wait)` gives true when it
// was ended by `fire`, at whatever time, and false when the task was cancelled first.
class Wait {
public:
    void fire() noexcept { settle(false); }

private:
    friend class until;
    enum class Phase { unattended, waiting, settled };

    void settle(bool byCancellation) noexcept {
        if (taken.exchange(true))
            return;
        interrupted = byCancellation;
        if (phase.exchange(Phase::settled) == Phase::waiting)
            executor->post([task = task] { task.resume(); });
    }

    std::atomic<bool> taken{false};
    std::atomic<Phase> phase{Phase::unattended};
    bool interrupted = false;
    std::coroutine_handle<> task;
    Executor* executor = nullptr;
};

class until {
public:
    explicit until(std::shared_ptr<Wait> awaited) : wait(std::move(awaited)) {}

    bool await_ready() const noexcept { return wait->phase.load() == Wait::Phase::settled; }
    template <typename Promise>
    bool await_suspend(std::coroutine_handle<Promise> self) {
        const TaskContext& context = self.promise().context;
        wait->task = self;
        wait->executor = context.executor;
        // Either may settle the wait while this is still being set up; the task is resumed by them only once
        // the phase says that it rests.
        onCancel.emplace(context.cancellation, Interrupt{wait.get()});
        auto expected = Wait::Phase::unattended;
        return wait->phase.compare_exchange_strong(expected, Wait::Phase::waiting);
    }
    bool await_resume() {
        onCancel.reset();
        return !wait->interrupted;
    }

private:
    struct Interrupt {
        Wait* wait;
        void operator()() const noexcept { wait->settle(true); }
    };

    std::shared_ptr<Wait> wait;
    std::optional<std::stop_callback<Interrupt>> onCancel;
};

} // namespace platform
