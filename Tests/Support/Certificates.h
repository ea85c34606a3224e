#pragma once

#include <memory>
#include <openssl/evp.h>
#include <openssl/x509.h>
#include <string>

namespace tests {

// A key with the certificate for it.
struct Identity {
    struct Free {
        void operator()(X509* certificate) const { X509_free(certificate); }
        void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
    };

    std::unique_ptr<EVP_PKEY, Free> key;
    std::unique_ptr<X509, Free> certificate;

    std::string certificatePEM() const;
    std::string keyPEM() const;
};

// An authority made for the test, which nobody trusts until told to.
class TestAuthority {
public:
    TestAuthority();

    // `names` as OpenSSL takes them: "DNS:localhost,IP:127.0.0.1".
    Identity issue(const std::string& names) const;

    std::string pem() const { return self.certificatePEM(); }

private:
    Identity self;
};

} // namespace tests
