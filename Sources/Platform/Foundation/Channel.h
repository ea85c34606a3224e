#pragma once

#include "Platform/Foundation/Wait.h"

#include <deque>
#include <mutex>

namespace platform {

// Hands values from any thread to one waiting task, in order. Shared by its two ends.
template <typename T>
class Channel {
public:
    // Any thread. What is pushed after the end is dropped.
    void push(T value) {
        notify([&] { values.push_back(std::move(value)); });
    }

    // Any thread. Ends the channel behind the values pushed so far, with an error or without.
    void finish(std::exception_ptr cause = nullptr) {
        notify([&] {
            finished = true;
            error = std::move(cause);
        });
    }

    // The next value, or nothing at the end. Throws, once, the error the channel ended with, or
    // CancellationError.
    Task<std::optional<T>> next() {
        for (;;) {
            std::shared_ptr<Wait> wait;
            {
                std::lock_guard lock(mutex);
                if (!values.empty()) {
                    std::optional<T> value(std::move(values.front()));
                    values.pop_front();
                    co_return value;
                }
                if (finished && error)
                    std::rethrow_exception(std::move(error));
                if (finished)
                    co_return std::nullopt;
                wait = waiting = std::make_shared<Wait>();
            }
            bool notified = co_await until(wait);
            if (!notified)
                throw CancellationError();
        }
    }

private:
    template <typename Change>
    void notify(Change change) {
        std::shared_ptr<Wait> wait;
        {
            std::lock_guard lock(mutex);
            if (finished)
                return;
            change();
            wait = std::move(waiting);
        }
        if (wait)
            wait->fire();
    }

    std::mutex mutex;
    std::deque<T> values;
    bool finished = false;
    std::exception_ptr error;
    std::shared_ptr<Wait> waiting;
};

} // namespace platform
