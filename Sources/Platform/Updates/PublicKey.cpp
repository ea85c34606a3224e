#include "Platform/Updates/PublicKey.h"

#include <algorithm>
#include <sodium.h>
#include <stdexcept>

namespace platform {
namespace {

static_assert(PublicKey::length == crypto_sign_PUBLICKEYBYTES);
static_assert(PublicKey::signatureLength == crypto_sign_BYTES);

void initializeSodium() {
    static const int result = sodium_init();
    if (result < 0)
        throw std::runtime_error("libsodium cannot be used");
}

const unsigned char* bytesOf(std::string_view text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

} // namespace

std::optional<std::string> decodeBase64(std::string_view text) {
    std::string bytes(text.size(), '\0');
    std::size_t length = 0;
    if (sodium_base642bin(reinterpret_cast<unsigned char*>(bytes.data()), bytes.size(), text.data(),
                          text.size(), " \t\r\n", &length, nullptr, sodium_base64_VARIANT_ORIGINAL)
        != 0)
        return std::nullopt;
    bytes.resize(length);
    return bytes;
}

std::optional<PublicKey> PublicKey::decode(std::string_view base64) {
    const auto decoded = decodeBase64(base64);
    if (!decoded || decoded->size() != length)
        return std::nullopt;
    PublicKey key;
    std::copy_n(bytesOf(*decoded), length, key.bytes.begin());
    return key;
}

bool PublicKey::verifies(std::string_view message, std::string_view signature) const {
    initializeSodium();
    return signature.size() == signatureLength
           && crypto_sign_verify_detached(bytesOf(signature), bytesOf(message), message.size(), bytes.data())
                  == 0;
}

} // namespace platform
