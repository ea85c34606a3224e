#pragma once

#include "Service/HTTPS/Certificate.h"
#include "Service/Support/Handles.h"
#include "Service/Support/Log.h"

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace lumarin::service {

// Keeps the service's certificate usable while it runs: renews one made here before it expires and takes up
// one that has been replaced on the disk. For one thread.
class CertificateKeeper {
public:
    using Clock = std::chrono::system_clock;

    // Makes a certificate if there is none. Throws std::runtime_error when there is no usable one in the end.
    CertificateKeeper(const std::filesystem::path& file, std::vector<std::string> hosts, const Log& log);

    // What new connections are to be accepted with.
    std::shared_ptr<SSL_CTX> context() const { return current; }

    // Looks at the files; to be called now and then. A failure is logged and leaves everything as it was.
    void renew(Clock::time_point now = Clock::now());

    Clock::time_point expiry() const { return expires; }

private:
    void load();

    const std::vector<std::string> names;
    const Log& events;
    const CertificateFiles files;
    std::string loaded; // The certificate's text.
    std::shared_ptr<SSL_CTX> current;
    Clock::time_point expires;
    std::string lastFailure;
};

} // namespace lumarin::service
