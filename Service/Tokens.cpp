#include "Service/Tokens.h"

#include "Platform/Foundation/FileManager.h"
#include "Service/Engine/Refusal.h"
#include "Service/Support/PrivateFile.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/rand.h>
#include <sstream>
#include <stdexcept>
#include <strings.h>
#include <sys/stat.h>

namespace lumarin::service {
namespace {

namespace files = platform::files;

constexpr auto lookAgainAfter = std::chrono::seconds(1);
constexpr std::size_t saltBytes = 16;
constexpr std::size_t secretBytes = 32;
constexpr std::size_t digestLength = 64; // Of SHA-256, in hexadecimal.
constexpr std::size_t longestClient = 64;

std::string hexadecimal(const unsigned char* bytes, std::size_t count) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string result;
    for (std::size_t index = 0; index < count; ++index) {
        result += digits[bytes[index] >> 4U];
        result += digits[bytes[index] & 0xFU];
    }
    return result;
}

std::string randomHexadecimal(std::size_t count) {
    std::string bytes(count, '\0');
    auto* const start = reinterpret_cast<unsigned char*>(bytes.data());
    if (RAND_bytes(start, static_cast<int>(count)) != 1)
        throw std::runtime_error("The system has no random numbers.");
    return hexadecimal(start, count);
}

// A secret of 256 random bits needs no slow hash.
std::string digestOf(std::string_view salt, std::string_view secret) {
    const std::string salted = std::string(salt).append(secret);
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int size = 0;
    if (EVP_Digest(salted.data(), salted.size(), digest.data(), &size, EVP_sha256(), nullptr) != 1)
        throw std::runtime_error("There is no SHA-256.");
    return hexadecimal(digest.data(), size);
}

bool isClientName(std::string_view name) {
    return !name.empty() && name.size() <= longestClient && std::ranges::all_of(name, [](unsigned char c) {
        return std::isalnum(c) != 0 || c == '-' || c == '_';
    });
}

bool isHexadecimal(std::string_view text, std::size_t length) {
    return text.size() == length && text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

// Differs whenever the file has been changed or another has taken its place.
std::string stampOf(const std::filesystem::path& file) {
    struct stat facts {};
    if (::stat(file.c_str(), &facts) != 0)
        return {};
    std::ostringstream stamp;
    stamp << facts.st_ino << ' ' << facts.st_size << ' ' << facts.st_mode << ' ' << facts.st_ctim.tv_sec
          << '.' << facts.st_ctim.tv_nsec;
    return stamp.str();
}

[[noreturn]] void refuse(const char* sentence, const char* cause) {
    throw Refusal(Tokens::unauthorized, sentence, cause);
}

} // namespace

Tokens::Tokens(std::filesystem::path file, const Log& events)
    : place(std::move(file)), log(events), hashes(read(place)), stamp(stampOf(place)) {}

std::string Tokens::client(std::string_view authorization, Clock::time_point now) {
    refresh(now);
    constexpr std::string_view scheme = "Bearer ";
    if (authorization.size() <= scheme.size()
        || ::strncasecmp(authorization.data(), scheme.data(), scheme.size()) != 0)
        refuse("The translation service wants a token (LumarinServiceToken); ask whoever runs it for one.",
               "no token");
    const auto token = authorization.substr(scheme.size());
    const auto dot = std::min(token.find('.'), token.size());
    const auto known = hashes.find(token.substr(0, dot));
    if (known != hashes.end()) {
        const auto digest = digestOf(known->second.salt, token.substr(std::min(dot + 1, token.size())));
        if (CRYPTO_memcmp(digest.data(), known->second.digest.data(), digestLength) == 0)
            return known->first;
    }
    refuse("The translation service does not accept this token; ask whoever runs it for a new one.",
           "unknown token");
}

std::string Tokens::add(const std::filesystem::path& file, const std::string& client) {
    if (!isClientName(client))
        throw std::runtime_error("A client's name is made of letters, digits, - and _, not \"" + client
                                 + "\".");
    auto all = std::filesystem::exists(file) ? read(file) : Hashes();
    const std::string secret = randomHexadecimal(secretBytes);
    const std::string salt = randomHexadecimal(saltBytes);
    all[client] = {salt, digestOf(salt, secret)};
    write(file, all);
    return client + "." + secret;
}

void Tokens::remove(const std::filesystem::path& file, const std::string& client) {
    auto all = read(file);
    if (all.erase(client) == 0)
        throw std::runtime_error("There is no client \"" + client + "\" in " + file.string() + ".");
    write(file, all);
}

Tokens::Hashes Tokens::read(const std::filesystem::path& file) {
    const auto result = files::read(file);
    if (result.status == files::ReadStatus::missing)
        throw std::runtime_error("The file " + file.string()
                                 + " does not exist; --add-client makes it with its first client.");
    if (result.status != files::ReadStatus::read)
        throw std::runtime_error("The file " + file.string() + " cannot be read.");
    if (const std::string exposed = exposure(file); !exposed.empty())
        throw std::runtime_error("The tokens are in " + file.string() + ", " + exposed);
    Hashes all;
    std::istringstream lines(result.bytes);
    std::size_t number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        if (line.empty() || line.starts_with('#'))
            continue;
        std::istringstream words(line);
        std::string name;
        Hash hash;
        std::string more;
        words >> name >> hash.salt >> hash.digest >> more;
        if (!isClientName(name) || !isHexadecimal(hash.salt, 2 * saltBytes)
            || !isHexadecimal(hash.digest, digestLength) || !more.empty() || all.contains(name))
            throw std::runtime_error("Line " + std::to_string(number) + " of " + file.string()
                                     + " is not a client's; --add-client writes such lines.");
        all.emplace(name, std::move(hash));
    }
    return all;
}

void Tokens::write(const std::filesystem::path& file, const Hashes& hashes) {
    std::string text = "# Clients of lumarin-service: name, salt and SHA-256 of salt and secret.\n";
    for (const auto& [name, hash] : hashes)
        text += name + " " + hash.salt + " " + hash.digest + "\n";
    try {
        files::writeAtomically(file, text);
    } catch (const std::exception&) {
        throw std::runtime_error("The file " + file.string() + " cannot be written.");
    }
}

// A file that cannot be used changes nothing: nobody is shut out, and nobody let in, by a half-written line.
void Tokens::refresh(Clock::time_point now) {
    if (now < lastLook + lookAgainAfter)
        return;
    lastLook = now;
    const std::string present = stampOf(place);
    if (present == stamp)
        return;
    stamp = present;
    try {
        hashes = read(place);
        lastFailure.clear();
        log.write("tokens loaded", {{"clients", hashes.size()}});
    } catch (const std::runtime_error& error) {
        if (lastFailure != error.what())
            log.write("tokens not loaded", {{"reason", error.what()}});
        lastFailure = error.what();
    }
}

} // namespace lumarin::service
