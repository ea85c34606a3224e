#pragma once

#include "Service/Support/Log.h"

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace lumarin::service {

// Who may use the service: clients by their names, each with a token of its own, of which a file keeps a
// salted hash a line. A token is the client's name, a dot and a secret. The file is read anew when it has
// changed, looked at once a second. For one thread.
class Tokens {
public:
    using Clock = std::chrono::steady_clock;

    static constexpr int unauthorized = 401;

    // `events` outlives the tokens. Throws std::runtime_error when the file cannot be read, has a line that
    // is none of ours, or can be read by others.
    Tokens(std::filesystem::path file, const Log& events);

    // The client that a request's field Authorization speaks for. Throws a Refusal when it is nobody's.
    std::string client(std::string_view authorization, Clock::time_point now = Clock::now());

    // Gives a client a token, a new one if it has one; the file is created if need be. Returns the token,
    // which stands nowhere else. Throws std::runtime_error, also for a name that is not of letters, digits, -
    // and _.
    static std::string add(const std::filesystem::path& file, const std::string& client);
    // Takes it away. Throws std::runtime_error, also where there is no such client.
    static void remove(const std::filesystem::path& file, const std::string& client);

private:
    struct Hash {
        std::string salt; // Hexadecimal, as the digest is.
        std::string digest;
    };
    using Hashes = std::map<std::string, Hash, std::less<>>;

    static Hashes read(const std::filesystem::path& file);
    static void write(const std::filesystem::path& file, const Hashes& hashes);
    void refresh(Clock::time_point now);

    const std::filesystem::path place;
    const Log& log;
    Hashes hashes;
    // Of the file as it was read.
    std::string stamp;
    std::string lastFailure;
    Clock::time_point lastLook{};
};

} // namespace lumarin::service
