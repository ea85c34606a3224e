#pragma once

#include <chrono>
#include <openssl/x509.h>
#include <string>
#include <vector>

namespace lumarin::service {

struct PemPair {
    std::string certificate;
    std::string key;
};

// Makes a key and a certificate that the key itself has signed, good for ten years from `now`, for localhost
// and `names`: host names and addresses. Throws std::runtime_error.
PemPair makeSelfSigned(std::chrono::system_clock::time_point now, const std::vector<std::string>& names);

// In PEM form. Throw std::runtime_error.
std::string pem(X509& certificate);
std::string pem(EVP_PKEY& key);

// Whether the certificate is good for all of `names`.
bool isFor(X509& certificate, const std::vector<std::string>& names);

// Whether the certificate was made by makeSelfSigned.
bool isSelfSigned(const X509& certificate);

} // namespace lumarin::service
