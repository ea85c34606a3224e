#pragma once

#include <memory>
#include <openssl/evp.h>
#include <openssl/x509.h>
#include <string>

namespace tests {

// A key with a certificate for it that it has signed itself, which nobody trusts until told to.
struct Identity {
    // `names` as OpenSSL takes them: "DNS:localhost,IP:127.0.0.1".
    explicit Identity(const std::string& names);

    struct Free {
        void operator()(X509* certificate) const { X509_free(certificate); }
        void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
    };

    std::unique_ptr<EVP_PKEY, Free> key;
    std::unique_ptr<X509, Free> certificate;

    std::string certificatePEM() const;
    std::string keyPEM() const;
};

} // namespace tests
