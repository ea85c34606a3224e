#include "Platform/Foundation/LineSplitter.h"

#include "Platform/Foundation/Text.h"

#include <algorithm>
#include <stdexcept>

namespace platform {

void LineSplitter::append(std::string_view piece) {
    // Moved only when at least half of it is done with, which keeps the work in proportion to the bytes.
    if (lineStart_ >= buffer_.size() - lineStart_) {
        buffer_.erase(0, lineStart_);
        searched_ -= lineStart_;
        lineStart_ = 0;
    }
    buffer_ += piece;
}

void LineSplitter::finish() {
    isFinished_ = true;
}

std::optional<std::string> LineSplitter::next() {
    if (endedByCarriageReturn_ && lineStart_ < buffer_.size()) {
        if (buffer_[lineStart_] == '\n')
            searched_ = ++lineStart_;
        endedByCarriageReturn_ = false;
    }
    const std::size_t found = buffer_.find_first_of("\r\n", searched_);
    const std::size_t end = std::min(found, buffer_.size());
    searched_ = end;
    if (end - lineStart_ > maximumLineLength)
        throw std::length_error("A line of the response is too long.");
    const bool hasEnd = found != std::string::npos;
    if (!hasEnd && (!isFinished_ || end == lineStart_))
        return std::nullopt;

    std::string line = text::repaired(std::string_view(buffer_).substr(lineStart_, end - lineStart_));
    endedByCarriageReturn_ = hasEnd && buffer_[end] == '\r';
    searched_ = lineStart_ = hasEnd ? end + 1 : end;
    return line;
}

} // namespace platform
