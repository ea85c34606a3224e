#pragma once

#include "Service/Engine/TranslationEngine.h"
#include "Service/Gloss/Lexicon.h"

#include <boost/asio/thread_pool.hpp>
#include <string>
#include <string_view>

namespace lumarin::service {

// The built-in engine: Chinese into English word by word, by a table of trade terms and common phrases. Needs
// no network and always gives the same text. What it does not know passes through unchanged. All but the
// beginning of a text is glossed on threads of its own, little by little, so that nobody waits for a long
// one.
class Gloss final : public TranslationEngine {
public:
    // Refuses every target language but English.
    std::unique_ptr<Translation> begin(const TranslationRequest& request,
                                       Clock::time_point deadline) const override;
    std::string name() const override { return "gloss"; }

    // The English text; `chinese` is well-formed UTF-8. A text without any Chinese comes back as it is.
    std::string text(std::string_view chinese) const;

private:
    Lexicon lexicon;
    mutable boost::asio::thread_pool workers;
};

} // namespace lumarin::service
