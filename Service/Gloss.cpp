#include "Service/Gloss.h"

#include "Service/Glosser.h"
#include "Service/Refusal.h"
#include "Service/UTF8.h"

#include <algorithm>

namespace lumarin::service {
namespace {

// Hands a text out word by word, each with the white space before it.
class WordByWord final : public Translation {
public:
    explicit WordByWord(std::string english) : text(std::move(english)) {}

    Progress next(Clock::time_point) override {
        constexpr std::string_view whitespace = " \t\r\n";
        if (position == text.size())
            return {};
        std::size_t start = position;
        position = std::min(text.find_first_not_of(whitespace, position), text.size());
        position = std::min(text.find_first_of(whitespace, position), text.size());
        return {Progress::Kind::piece, text.substr(start, position - start)};
    }

private:
    std::string text;
    std::size_t position = 0;
};

bool hasChinese(std::string_view text) {
    for (std::size_t position = 0; position < text.size();) {
        auto character = characterAt(text, position);
        if (isHan(character))
            return true;
        position += character.size();
    }
    return false;
}

} // namespace

std::unique_ptr<Translation> Gloss::begin(const TranslationRequest& request, const Waiting&) const {
    constexpr int notImplemented = 501;
    if (request.targetLanguage != "EN")
        throw Refusal(notImplemented, "The built-in gloss knows English only; start lumarin-service with "
                                      "--upstream for more.");
    return std::make_unique<WordByWord>(text(request.text));
}

std::string Gloss::text(std::string_view chinese) const {
    return hasChinese(chinese) ? Glosser(chinese, lexicon).run() : std::string(chinese);
}

} // namespace lumarin::service
