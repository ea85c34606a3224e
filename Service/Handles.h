#pragma once

#include <memory>
#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>
#include <unistd.h>
#include <utility>

namespace lumarin::service {

// Calls the function that releases a C handle.
template <auto release>
struct Release {
    template <typename Handle>
    void operator()(Handle* handle) const {
        release(handle);
    }
};

using Bio = std::unique_ptr<BIO, Release<BIO_free_all>>;
using PrivateKey = std::unique_ptr<EVP_PKEY, Release<EVP_PKEY_free>>;
using X509Certificate = std::unique_ptr<X509, Release<X509_free>>;
using X509Extension = std::unique_ptr<X509_EXTENSION, Release<X509_EXTENSION_free>>;
using TLSContext = std::unique_ptr<SSL_CTX, Release<SSL_CTX_free>>;
using TLSSession = std::unique_ptr<SSL, Release<SSL_free>>;

// A file descriptor of one's own; negative when there is none.
class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(other.release()) {}
    Descriptor& operator=(Descriptor&&) = delete;
    ~Descriptor() { close(); }

    int number() const { return number_; }
    int release() { return std::exchange(number_, -1); }
    void close() {
        if (number_ >= 0)
            ::close(release());
    }

private:
    int number_;
};

} // namespace lumarin::service
