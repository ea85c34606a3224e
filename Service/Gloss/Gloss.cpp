#include "Service/Gloss/Gloss.h"

#include "Service/Engine/Refusal.h"
#include "Service/Gloss/Glosser.h"
#include "Service/Support/Async.h"

namespace lumarin::service {
namespace {

// Hands a text out word by word, each with the white space before it, as it is glossed.
class WordByWord final : public Translation {
public:
    WordByWord(std::string text, const Lexicon& lexicon, asio::thread_pool& pool, Clock::time_point end)
        : chinese(std::move(text)), glosser(chinese, lexicon), workers(pool), deadline(end) {
        glosser.advance(); // All of most texts.
    }

    Progress next() override {
        constexpr int timeout = 504;
        if (std::string word = nextWord(); !word.empty())
            return {Progress::Kind::piece, std::move(word)};
        if (glosser.isComplete())
            return {};
        if (Clock::now() >= deadline)
            throw Refusal(timeout, "The text takes too long.", "time-out");
        return {Progress::Kind::nothingYet};
    }

    asio::awaitable<void> wait(Clock::time_point) override {
        // Long enough to be worth the way, short enough for others to have their turn.
        static constexpr auto turn = std::chrono::milliseconds(1);
        return inBackground(workers, [this] {
            const auto end = Clock::now() + turn;
            while (!glosser.isComplete() && Clock::now() < end)
                glosser.advance();
        });
    }

private:
    // Empty if it has not been glossed to its end.
    std::string nextWord() {
        constexpr std::string_view blanks = " \t\r\n";
        const std::string_view english = glosser.settled();
        for (; searched < english.size(); ++searched) {
            const bool isBlank = blanks.find(english[searched]) != std::string_view::npos;
            if (isBlank && isInWord) {
                isInWord = false;
                return take(english);
            }
            isInWord = !isBlank;
        }
        return glosser.isComplete() ? take(english) : "";
    }

    std::string take(std::string_view english) {
        const std::size_t start = std::exchange(position, searched);
        return std::string(english.substr(start, searched - start));
    }

    const std::string chinese;
    Glosser glosser;
    asio::thread_pool& workers;
    const Clock::time_point deadline;
    std::size_t position = 0; // Of what has not been handed out.
    std::size_t searched = 0; // For the end of a word.
    bool isInWord = false;
};

} // namespace

std::unique_ptr<Translation> Gloss::begin(const TranslationRequest& request,
                                          Clock::time_point deadline) const {
    constexpr int notImplemented = 501;
    if (request.targetLanguage != "EN")
        throw Refusal(notImplemented, "The built-in gloss knows English only; start lumarin-service with "
                                      "--upstream for more.");
    return std::make_unique<WordByWord>(request.text, lexicon, workers, deadline);
}

std::string Gloss::text(std::string_view chinese) const {
    Glosser glosser(chinese, lexicon);
    while (!glosser.isComplete())
        glosser.advance();
    return std::string(glosser.settled());
}

} // namespace lumarin::service
