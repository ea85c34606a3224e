#pragma once

#include "Platform/Foundation/HTTPSession.h"

#include <filesystem>
#include <mutex>

namespace platform::desktop {

// A session of the network library, made when it is first used. The library stands apart because loading what
// it needs takes as long as starting all the rest.
class LoadedHTTPSession : public HTTPSession {
public:
    // Loads the library if it is not there yet, for the first session to find it. Any thread.
    static void prepare();

    LoadedHTTPSession(HTTPSessionConfiguration chosen, std::optional<std::filesystem::path> authorityFile)
        : configuration(chosen), authority(std::move(authorityFile)) {}

    // Throws HTTPError where the library is missing.
    std::unique_ptr<HTTPExchange> open(HTTPRequest request) override;

private:
    const HTTPSessionConfiguration configuration;
    const std::optional<std::filesystem::path> authority;
    std::once_flag isMade;
    std::shared_ptr<HTTPSession> session;
};

} // namespace platform::desktop
