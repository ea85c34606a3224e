#pragma once

#include "Core/LocalizedError.h"

namespace lumarin {

// What can go wrong with the translation service, for both of its clients.
class TranslationError : public LocalizedError {
public:
    enum class Case { networkError, apiError, noAPIKey, emptyResponse, cancelled };

    static TranslationError networkError(std::string message) {
        return {Case::networkError, std::move(message)};
    }
    static TranslationError apiError(std::string message) { return {Case::apiError, std::move(message)}; }
    // For the cases that carry no message.
    explicit TranslationError(Case errorCase);

    std::string errorDescription() const override;

    const Case errorCase;
    const std::string message;

private:
    TranslationError(Case which, std::string text);
};

} // namespace lumarin
