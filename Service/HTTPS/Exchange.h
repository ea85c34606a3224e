#pragma once

#include "Service/Engine/TranslationEngine.h"
#include "Service/HTTPS/Connections.h"
#include "Service/Support/Signals.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>

namespace lumarin::service {

class TLSStream;

// What is known of a request and its answer while its connection's thread handles it.
struct Exchange {
    using Clock = std::chrono::steady_clock;

    // The one that the calling thread handles.
    static Exchange& current() {
        static thread_local Exchange exchange;
        return exchange;
    }

    Clock::time_point start;
    Clock::time_point deadline; // By when the answer has to be complete.
    Connections::Place* place = nullptr;
    TLSStream* stream = nullptr;
    int socket = -1;
    const EndSignals* signals = nullptr;

    bool isOldHTTP = false; // 1.0: knows neither chunks nor connections that are kept.
    std::string method;     // Empty for a request that could not be read.
    std::string endpoint;   // Of the service's own; empty for any other.
    int status = 0;         // Zero until an answer has been sent.
    bool hasUnreadBody = false;
    // Of a translation.
    std::size_t pieces = 0;
    std::optional<Clock::duration> untilFirstPiece;
    // Why it failed, in a word and in a sentence without anything of the text or the key; empty if it did
    // not.
    std::string failure;
    std::string failureDetail;
    void fail(const Abandoned& abandoned) {
        const bool isStopped = signals->abandon.isRaised();
        failure = isStopped ? "stopped" : "client gone";
        failureDetail = isStopped ? "The service had to end." : abandoned.what();
    }
    // Not to be dropped before the answer has left, as that may take its time.
    std::shared_ptr<void> kept;
};

} // namespace lumarin::service
