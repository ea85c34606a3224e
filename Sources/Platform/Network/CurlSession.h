#pragma once

#include "Platform/Foundation/HTTPSession.h"

#include <filesystem>

namespace platform {

class CurlLoop;
class TrustedCertificates;

// An HTTPSession on libcurl with a thread and connections of its own, which end with it. What is under way
// then fails; exchanges may outlive the session.
class CurlSession : public HTTPSession {
public:
    // Trusts the authorities in the PEM file `authority` besides the system's, as they stand there when a
    // connection is made; a file without any changes nothing.
    explicit CurlSession(HTTPSessionConfiguration chosen,
                         const std::optional<std::filesystem::path>& authority = std::nullopt);
    ~CurlSession() override;
    CurlSession(const CurlSession&) = delete;
    CurlSession& operator=(const CurlSession&) = delete;

    std::unique_ptr<HTTPExchange> open(HTTPRequest request) override;

private:
    const HTTPSessionConfiguration configuration;
    const std::shared_ptr<const TrustedCertificates> trusted;
    const std::shared_ptr<CurlLoop> loop;
};

} // namespace platform
