#pragma once

#include <memory>
#include <optional>
#include <string>

namespace lumarin::service {

struct TranslationRequest {
    std::string text;
    std::string systemPrompt;   // Empty for a request that brings none.
    std::string targetLanguage; // Two upper-case letters.
};

// A translation under way, asked for piece by piece. Used by one thread at a time.
class Translation {
public:
    virtual ~Translation() = default;

    // The next piece, or nothing when the translation is complete. May wait; throws when it is lost.
    virtual std::optional<std::string> next() = 0;
};

// What turns text into another language. Shared by the server's threads, so begin() is called by several
// at once. Engines outlive the translations they have begun.
class TranslationEngine {
public:
    virtual ~TranslationEngine() = default;

    // Throws a Refusal when the request cannot be served; nothing has been answered at that point.
    virtual std::unique_ptr<Translation> begin(const TranslationRequest& request) const = 0;
};

} // namespace lumarin::service
