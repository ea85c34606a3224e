#pragma once

#include <filesystem>
#include <memory>
#include <vector>

struct ssl_ctx_st;
struct x509_st;

namespace platform {

// Authorities to trust besides the system's. Unchanging, for any thread.
class TrustedCertificates {
public:
    // The certificates in a PEM file: those before its first fault, none if it cannot be read.
    explicit TrustedCertificates(const std::filesystem::path& pemFile);

    void addTo(ssl_ctx_st* context) const;

private:
    struct Free {
        void operator()(x509_st* certificate) const;
    };

    std::vector<std::unique_ptr<x509_st, Free>> certificates;
};

} // namespace platform
