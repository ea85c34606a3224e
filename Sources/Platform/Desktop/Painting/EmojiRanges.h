#pragma once

#include <vector>

#include <QString>

namespace platform::desktop {

struct TextRange {
    qsizetype start = 0;
    qsizetype length = 0;
};

// The parts of a text that are pictures in colour: emoji with all that belongs to them. Any thread.
std::vector<TextRange> emojiRanges(const QString& text);

} // namespace platform::desktop
