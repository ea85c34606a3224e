#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

// Makes lines of bytes that arrive in pieces. A line ends at LF, CR or CR LF, and is handed out without
// its end, as valid UTF-8. Blank lines are lines. For one thread at a time.
class LineSplitter {
public:
    // The longest line in bytes; a peer that never ends its line must not fill the memory.
    static constexpr std::size_t maximumLineLength = std::size_t{1} << 20U;

    void append(std::string_view piece);

    // Makes what is left without a line's end the last line, if there is anything left. Nothing may be
    // appended after it.
    void finish();

    // The next complete line, none if more bytes are needed. Throws std::length_error, now and from then
    // on, at a line longer than the maximum.
    std::optional<std::string> next();

private:
    std::string buffer_;
    std::size_t lineStart_ = 0;
    std::size_t searched_ = 0;
    bool endedByCarriageReturn_ = false;
    bool isFinished_ = false;
};

} // namespace platform
