#pragma once

#include "Desktop/SelectionClient.h"
#include "Desktop/XServer.h"
#include "Platform/Desktop/DesktopPasteboard.h"
#include "Platform/Foundation/Sleep.h"
#include "Platform/Foundation/ThreadRunLoop.h"

#include <deque>
#include <future>
#include <utility>

#include <gtest/gtest.h>

namespace tests {

// The pasteboard of an X server of the test's own.
class PasteboardTest : public testing::Test {
protected:
    // Another program; all of them before the pasteboard is used.
    SelectionClient& client(const ClientScript& script) { return clients.emplace_back(script); }

    platform::Pasteboard& pasteboard() {
        if (!pasteboard_)
            pasteboard_ = std::make_unique<platform::desktop::DesktopPasteboard>(keys);
        return *pasteboard_;
    }
    void endPasteboard() { pasteboard_.reset(); }

    template <typename T>
    T run(platform::Task<T> task) {
        std::promise<T> result;
        auto future = result.get_future();
        spawn(worker.runLoop(), finish(std::move(task), std::move(result)));
        return future.get();
    }

    void press(xcb_window_t window, char key) {
        using platform::desktop::ClipboardEffect;
        keys.record(key == 'c'   ? ClipboardEffect::copy
                    : key == 'v' ? ClipboardEffect::paste
                                 : ClipboardEffect::none,
                    window);
        probe->type(window, key);
    }

    XServer server;
    const std::unique_ptr<SelectionProbe> probe = std::make_unique<SelectionProbe>();
    platform::desktop::PostedKeys keys;
    std::deque<SelectionClient> clients;

private:
    template <typename T>
    static platform::Task<void> finish(platform::Task<T> task, std::promise<T> result) {
        if constexpr (std::is_void_v<T>) {
            co_await std::move(task);
            result.set_value();
        } else {
            result.set_value(co_await std::move(task));
        }
    }

    platform::WorkerThread worker;
    std::unique_ptr<platform::desktop::DesktopPasteboard> pasteboard_;
};

} // namespace tests
