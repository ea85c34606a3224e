#pragma once

#include "Models/TargetLanguage.h"
#include "Platform/Foundation/HTTPSession.h"

#include <memory>
#include <string>

namespace lumarin {

// The client of the service's plain endpoint: one request, one whole answer. It must outlive its calls.
class FreeTranslator {
public:
    FreeTranslator();

    // The translation as the service gave it, but for control characters. Throws TranslationError, the
    // session's errors, the JSON library's, or CancellationError.
    platform::Task<std::string> translate(std::string text, TargetLanguage to);

private:
    std::shared_ptr<platform::HTTPSession> session;
};

} // namespace lumarin
