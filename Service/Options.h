#pragma once

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

namespace lumarin::service {

// What the command line asks for.
struct Options {
    std::string host = "127.0.0.1";
    std::uint16_t port = 8443; // 0: any free one.
    std::filesystem::path certificate;
    bool help = false;
};

// A command line that cannot be followed; what() is one sentence for the person who wrote it.
class OptionError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Reads main's arguments. Not to be called by two threads at once.
Options parseOptions(int count, char* const* arguments);

// The text of --help.
std::string_view usage();

} // namespace lumarin::service
