#pragma once

#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>

namespace lumarin::service {

struct TranslationRequest {
    std::string text;
    std::string systemPrompt;   // Empty for a request that brings none.
    std::string targetLanguage; // Two upper-case letters.
};

// For whom a translation is made, as far as an engine has to know.
struct Waiting {
    // The client's connection, to see it closed, and what turns readable when the service ends for good;
    // negative where nobody is to be watched.
    int socket = -1;
    int abandon = -1;
    std::chrono::steady_clock::time_point deadline = std::chrono::steady_clock::time_point::max();
};

// Thrown where a translation is given up because nobody waits for it any longer.
class Abandoned : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// What became of waiting for a piece of a translation.
struct Progress {
    enum class Kind { piece, nothingYet, complete };

    Kind kind = Kind::complete;
    std::string piece = {};
};

// A translation under way, asked for piece by piece. Used by one thread at a time; dropping it gives it up.
class Translation {
public:
    using Clock = std::chrono::steady_clock;

    virtual ~Translation() = default;

    // Waits for the next piece, until `moment` at the longest. Throws a Refusal when the translation is lost,
    // and Abandoned.
    virtual Progress next(Clock::time_point moment) = 0;
};

// What turns text into another language. Shared by the server's threads, so begin() is called by several
// at once. Engines outlive the translations they have begun.
class TranslationEngine {
public:
    virtual ~TranslationEngine() = default;

    // Throws a Refusal when the request cannot be served; nothing has been answered at that point.
    virtual std::unique_ptr<Translation> begin(const TranslationRequest& request,
                                               const Waiting& waiting) const = 0;
};

} // namespace lumarin::service
