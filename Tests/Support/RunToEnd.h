#pragma once

#include "Platform/Foundation/Task.h"

#include <future>

namespace tests {

template <typename T>
platform::Task<void> settle(platform::Task<T> task, std::promise<T> result) {
    try {
        if constexpr (std::is_void_v<T>) {
            co_await std::move(task);
            result.set_value();
        } else {
            result.set_value(co_await std::move(task));
        }
    } catch (...) {
        result.set_exception(std::current_exception());
    }
}

// Runs a task where the executor does, on another thread, and gives or throws what comes of it.
template <typename T>
T runToEnd(platform::Executor& executor, platform::Task<T> task) {
    std::promise<T> result;
    auto future = result.get_future();
    spawn(executor, settle(std::move(task), std::move(result)));
    return future.get();
}

} // namespace tests
