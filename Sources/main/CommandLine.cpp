#include "CommandLine.h"

#include <algorithm>
#include <array>

namespace lumarin {

CommandLine::CommandLine(std::span<char* const> arguments) {
    constexpr std::array<std::string_view, 4> commands{"press", "release", "toggle", "cancel"};
    if (arguments.size() <= 1)
        return;
    const std::string_view word = arguments[1];
    purpose = Purpose::misunderstood;
    if (arguments.size() > 2)
        return;
    if (word == "--help" || word == "-h") {
        purpose = Purpose::help;
    } else if (word == "--version") {
        purpose = Purpose::version;
    } else if (std::ranges::count(commands, word) != 0) {
        purpose = Purpose::tellRunningCopy;
        command = word;
    }
}

} // namespace lumarin
