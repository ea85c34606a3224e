#pragma once

#include <filesystem>
#include <string_view>

namespace lumarin {

// The debug log of the current run.
class LumLog {
public:
    LumLog() = delete;

    // Adds one entry, and prints the message. Any thread; entries stay whole. Failures are ignored.
    static void log(std::string_view message);

    // The log file. Its folder is not created.
    static std::filesystem::path logURL();
};

} // namespace lumarin
