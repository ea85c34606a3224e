#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace lumarin::service {

// A model server and how to ask it.
struct UpstreamOptions {
    static constexpr const char* gloss = "gloss";

    std::string
        upstream; // Empty for a model of this computer, if there is one; `gloss` for the built-in one.
    std::string model;
    std::string key;                         // The content of --key-file.
    std::filesystem::path upstreamAuthority; // Empty for none.
    nlohmann::json parameters = nlohmann::json::object();
    std::optional<std::chrono::seconds> timeout;
    int weight = 0; // Its share among several.
};

// What the operator asks for, on the command line and in the configuration file.
struct Options : UpstreamOptions {
    std::string host = "127.0.0.1";
    std::uint16_t port = 8443; // 0: any free one.
    std::filesystem::path certificate;
    std::vector<std::string> names; // Besides localhost and the loopback addresses.

    std::vector<UpstreamOptions> upstreams; // Several, instead of the one.

    // Translations a minute and at once; zero is no limit.
    int rate = 6000;
    int atOnce = 256;
    int addressRate = 1500;
    int addressAtOnce = 64;
    int deviceRate = 60;
    int deviceAtOnce = 4;
    int connections = 1000;
    std::chrono::seconds requestTime{300};

    bool hasFixedPrompt = false; // What clients have the model told is not heeded.

    std::filesystem::path appcast; // Empty for none.

    std::filesystem::path tokens; // Empty: everybody is served.
    std::string addClient;        // Whom to give a token instead of serving, if anybody.
    std::string removeClient;     // Whom to take it away from.

    std::vector<std::filesystem::path> secretFiles; // That have been named, and may not be served.
    // Options that have been used, and mean nothing without an address, or to the gloss.
    std::string needsAddress;
    std::string needsModel;
    bool check = false;
    bool help = false;
};

// Options that cannot be followed; what() is one sentence for the person who wrote them.
class OptionError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Reads main's arguments, and the configuration file that they name. Not to be called by two threads at once.
// Throws an OptionError.
Options parseOptions(int count, char* const* arguments);

// The text of --help.
std::string_view usage();

} // namespace lumarin::service
