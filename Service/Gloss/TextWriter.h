#pragma once

#include <string>
#include <string_view>

namespace lumarin::service {

// Puts English words, punctuation and what passes through together: with spaces between them, and with a
// capital where a sentence starts.
class TextWriter {
public:
    // How a mark stands between words: "(" opens, "," closes, "~" joins, "—" stands by itself.
    enum class Mark { opening, closing, joining, separate };

    // A comma at its beginning is left out where there is nothing to part it from.
    void word(std::string_view english);

    // One character that keeps its place beside others that pass through.
    void unchanged(std::string_view character);

    void mark(std::string_view english, Mark kind);

    // A space, a line break.
    void blank(std::string_view character);

    bool lineIsNumber() const;

    std::string text;

private:
    enum class Last { nothing, word, unchanged, joint };

    void space();
    void closeUp();

    Last last = Last::nothing;
    bool sentenceStarts = true;
    bool quoteIsOpen = false;
};

} // namespace lumarin::service
