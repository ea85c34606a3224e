#pragma once

#include "Service/Engine/TranslationEngine.h"
#include "Service/Gloss/Lexicon.h"

#include <string>
#include <string_view>

namespace lumarin::service {

// The built-in engine: Chinese into English word by word, by a table of trade terms and common phrases. Needs
// no network and always gives the same text. What it does not know passes through unchanged.
class Gloss final : public TranslationEngine {
public:
    // Refuses every target language but English.
    std::unique_ptr<Translation> begin(const TranslationRequest& request,
                                       const Waiting& waiting) const override;

    // The English text; `chinese` is well-formed UTF-8. A text without any Chinese comes back as it is.
    std::string text(std::string_view chinese) const;

private:
    Lexicon lexicon;
};

} // namespace lumarin::service
