#pragma once

#include <chrono>
#include <openssl/x509.h>
#include <string>

namespace lumarin::service {

struct PemPair {
    std::string certificate;
    std::string key;
};

// Makes a key and a certificate for localhost that the key itself has signed, good for ten years from `now`.
// Throws std::runtime_error.
PemPair makeSelfSigned(std::chrono::system_clock::time_point now);

// Whether the certificate was made by makeSelfSigned.
bool isSelfSigned(const X509& certificate);

} // namespace lumarin::service
