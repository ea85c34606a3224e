#include "Core/TranslationError.h"

#include "Core/LocalizationManager.h"
#include "Platform/Foundation/Text.h"

namespace lumarin {
namespace {

ErrorWording wordingOf(TranslationError::Case errorCase) {
    switch (errorCase) {
    case TranslationError::Case::networkError:
        return {"networkError", "error.network"};
    case TranslationError::Case::apiError:
        return {"apiError", "error.api"};
    case TranslationError::Case::noAPIKey:
        return {"noAPIKey", "error.no_api_key"};
    case TranslationError::Case::emptyResponse:
        return {"emptyResponse", "error.empty_response"};
    case TranslationError::Case::cancelled:
        return {"cancelled", "error.cancelled"};
    }
    return {};
}

} // namespace

TranslationError::TranslationError(Case which) : LocalizedError(wordingOf(which).name), errorCase(which) {}

TranslationError::TranslationError(Case which, std::string text)
    : LocalizedError(std::string(wordingOf(which).name) + "(\"" + text + "\")"),
      errorCase(which),
      message(std::move(text)) {}

std::string TranslationError::errorDescription() const {
    auto text = localized(wordingOf(errorCase).key);
    bool hasMessage = errorCase == Case::networkError || errorCase == Case::apiError;
    return hasMessage ? platform::text::format(text, {message}) : text;
}

} // namespace lumarin
