#pragma once

#include "Platform/Network/CurlHandles.h"
#include "Platform/Network/CurlTransfer.h"

#include <mutex>
#include <thread>
#include <vector>

namespace platform {

// The thread and the connections of a session. Sleeps until there is something to do. Any thread may call it,
// also after the end.
class CurlLoop {
public:
    explicit CurlLoop(int maximumConnectionsPerHost);

    void start(std::unique_ptr<CurlTransfer> transfer);

    // Has the thread look for transfers that have been cancelled.
    void wake();

    // Fails what is under way and waits for the thread's end. To be called once, before the loop is dropped.
    void stop();

private:
    void run();
    bool takeArrivals();
    void endOverdue();
    void endCompleted();
    int millisecondsToNextDeadline() const;

    std::mutex mutex;
    std::vector<std::unique_ptr<CurlTransfer>> arrivals;
    bool isStopping = false;

    // Replaced on the thread under the mutex, so that nobody wakes a handle that is gone.
    CurlMulti multi;
    std::vector<std::unique_ptr<CurlTransfer>> transfers;
    std::thread thread;
};

} // namespace platform
