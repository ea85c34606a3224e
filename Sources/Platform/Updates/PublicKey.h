#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

// The bytes that a base64 text stands for, white space ignored; none for any other text.
std::optional<std::string> decodeBase64(std::string_view text);

// A key that signatures are checked with (Ed25519). Unchanging, for any thread.
class PublicKey {
public:
    static constexpr std::size_t length = 32;
    static constexpr std::size_t signatureLength = 64;

    // From its 32 bytes in base64; none for any other text.
    static std::optional<PublicKey> decode(std::string_view base64);

    // Takes as long as it takes to read the message.
    bool verifies(std::string_view message, std::string_view signature) const;

private:
    std::array<unsigned char, length> bytes{};
};

} // namespace platform
