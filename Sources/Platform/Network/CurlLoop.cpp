#include "Platform/Network/CurlLoop.h"

#include <algorithm>
#include <climits>
#include <csignal>

namespace platform {
namespace {

// Signals are the main thread's. A broken pipe is reported by the call that met it.
void blockSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
}

// Sets up what all loops need.
void prepareLibrary() {
    static const CURLcode result = curl_global_init(CURL_GLOBAL_ALL);
    if (result != CURLE_OK)
        throw HTTPError(curl_easy_strerror(result));
}

} // namespace

CurlLoop::CurlLoop(int maximumConnectionsPerHost) {
    prepareLibrary();
    multi.reset(curl_multi_init());
    if (!multi)
        throw std::bad_alloc();
    curl_multi_setopt(multi.get(), CURLMOPT_MAX_HOST_CONNECTIONS,
                      static_cast<long>(maximumConnectionsPerHost));
    thread = std::thread([this] { run(); });
}

void CurlLoop::start(std::unique_ptr<CurlTransfer> transfer) {
    {
        std::lock_guard lock(mutex);
        arrivals.push_back(std::move(transfer));
    }
    wake();
}

void CurlLoop::wake() {
    std::lock_guard lock(mutex);
    if (multi)
        curl_multi_wakeup(multi.get());
}

void CurlLoop::stop() {
    {
        std::lock_guard lock(mutex);
        isStopping = true;
    }
    wake();
    thread.join();
}

void CurlLoop::run() {
    blockSignals();
    while (takeArrivals()) {
        endOverdue();
        int running = 0;
        curl_multi_perform(multi.get(), &running);
        endCompleted();
        curl_multi_poll(multi.get(), nullptr, 0, millisecondsToNextDeadline(), nullptr);
    }
    for (const auto& transfer : transfers) {
        curl_multi_remove_handle(multi.get(), transfer->handle());
        transfer->fail(HTTPError("The request was ended with its session."));
    }
    transfers.clear();
    std::lock_guard lock(mutex);
    multi.reset();
}

bool CurlLoop::takeArrivals() {
    std::lock_guard lock(mutex);
    for (auto& transfer : arrivals) {
        curl_multi_add_handle(multi.get(), transfer->handle());
        transfers.push_back(std::move(transfer));
    }
    arrivals.clear();
    return !isStopping;
}

void CurlLoop::endOverdue() {
    std::erase_if(transfers, [&](const auto& transfer) {
        const auto deadline = transfer->deadline();
        if (deadline > std::chrono::steady_clock::now())
            return false;
        transfer->abandon();
        curl_multi_remove_handle(multi.get(), transfer->handle());
        transfer->finish(CURLE_OPERATION_TIMEDOUT);
        return true;
    });
}

void CurlLoop::endCompleted() {
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi.get(), &left)) {
        CURL* const handle = message->easy_handle;
        const CURLcode result = message->data.result;
        curl_multi_remove_handle(multi.get(), handle);
        const auto ended = std::find_if(transfers.begin(), transfers.end(),
                                        [&](const auto& transfer) { return transfer->handle() == handle; });
        (*ended)->finish(result);
        transfers.erase(ended);
    }
}

int CurlLoop::millisecondsToNextDeadline() const {
    const auto now = std::chrono::steady_clock::now();
    auto shortest = std::chrono::milliseconds(INT_MAX);
    for (const auto& transfer : transfers)
        shortest =
            std::min(shortest, std::chrono::ceil<std::chrono::milliseconds>(transfer->deadline() - now));
    return std::max(0, static_cast<int>(shortest.count()));
}

} // namespace platform
