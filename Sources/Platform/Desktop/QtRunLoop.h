#pragma once

#include "Platform/Foundation/RunLoop.h"

#include <map>
#include <memory>
#include <mutex>

namespace platform::desktop {

// The run loop on Qt's event loop, nested ones (menus, dialogs) included. Made and dropped on the main
// thread, with Qt's application object alive; asleep while nothing is due.
class QtRunLoop : public RunLoop {
public:
    QtRunLoop();
    ~QtRunLoop() override;
    QtRunLoop(const QtRunLoop&) = delete;
    QtRunLoop& operator=(const QtRunLoop&) = delete;

    void post(std::function<void()> work) override;
    void postAfter(Duration delay, std::function<void()> work) override;
    Duration now() const override;
    std::chrono::system_clock::time_point date() const override;

private:
    class Waker;
    using Moment = std::chrono::steady_clock::time_point;

    void runNext();

    std::mutex mutex;
    std::multimap<Moment, std::function<void()>> queue;
    bool isWoken = false;
    std::unique_ptr<Waker> waker;
};

} // namespace platform::desktop
