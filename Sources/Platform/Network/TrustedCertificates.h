#pragma once

#include <filesystem>

struct ssl_ctx_st;

namespace platform {

// Authorities to trust besides the system's: the certificates in a PEM file. For any thread.
class TrustedCertificates {
public:
    explicit TrustedCertificates(std::filesystem::path pemFile);

    // Adds those before the file's first fault, none if it cannot be read. It is read anew each time: a
    // service makes its certificate when it first starts, and makes it again before it ends.
    void addTo(ssl_ctx_st* context) const;

private:
    const std::filesystem::path file;
};

} // namespace platform
