#pragma once

#include <functional>
#include <memory>

class QSocketNotifier;

namespace platform::desktop {

// Turns SIGTERM, SIGINT and SIGHUP into a call on the main thread, so that the program ends as it does from
// its menu. To be made on the main thread before any other thread is.
class TerminationSignals {
public:
    TerminationSignals();
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

    // Needs Qt's application object. What came before is reported too.
    void report(std::function<void()> action);

private:
    int file;
    std::unique_ptr<QSocketNotifier> notifier;
};

} // namespace platform::desktop
