#pragma once

#include <functional>
#include <initializer_list>
#include <memory>

class QSocketNotifier;

namespace platform::desktop {

// Turns signals to the process into a call on the main thread. To be made on the main thread before any other
// thread is.
class SignalWatch {
public:
    explicit SignalWatch(std::initializer_list<int> numbers);
    ~SignalWatch();
    SignalWatch(const SignalWatch&) = delete;
    SignalWatch& operator=(const SignalWatch&) = delete;

    // Needs Qt's application object. What came before is reported too.
    void report(std::function<void()> action);

private:
    int file;
    std::unique_ptr<QSocketNotifier> notifier;
};

} // namespace platform::desktop
