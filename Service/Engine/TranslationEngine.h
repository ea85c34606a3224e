#pragma once

#include <boost/asio/awaitable.hpp>
#include <chrono>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace lumarin::service {

struct TranslationRequest {
    std::string text;
    std::string systemPrompt;   // Empty for a request that brings none.
    std::string targetLanguage; // Two upper-case letters.
};

// Thrown where a translation is given up because nobody waits for it any longer.
class Abandoned : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// How far a translation has come.
struct Progress {
    enum class Kind { piece, nothingYet, complete };

    Kind kind = Kind::complete;
    std::string piece = {};
};

// A translation under way, asked for piece by piece. Used by one coroutine at a time; dropping it gives it
// up, for which nothing may be waiting for it.
class Translation {
public:
    using Clock = std::chrono::steady_clock;

    virtual ~Translation() = default;

    // The next piece, if it is there; never waits. Throws a Refusal when the translation is lost.
    virtual Progress next() = 0;

    // Waits until next() may have more to give, until `moment` at the longest, or until that is
    // cancelled. Throws nothing.
    virtual boost::asio::awaitable<void> wait(Clock::time_point moment) = 0;

    // To be called once the whole translation has been handed on: takes a moment to leave things in order for
    // the next one.
    virtual boost::asio::awaitable<void> finish() { co_return; }
};

// What turns text into another language. Engines outlive the translations they have begun.
class TranslationEngine {
public:
    using Clock = Translation::Clock;

    virtual ~TranslationEngine() = default;

    // Begins a translation that has to be complete by `deadline`. Throws a Refusal when the request cannot be
    // served; nothing has been answered at that point.
    virtual std::unique_ptr<Translation> begin(const TranslationRequest& request,
                                               Clock::time_point deadline) const = 0;

    // What answers at the moment: a model's name, or what it is if it has none.
    virtual std::string name() const = 0;

    // Of each model server, in the order in which they were named.
    struct Health {
        bool isWell;
        std::uint64_t translations; // That have begun.
        std::uint64_t failures;
    };
    virtual std::vector<Health> health() const { return {}; }
};

} // namespace lumarin::service
