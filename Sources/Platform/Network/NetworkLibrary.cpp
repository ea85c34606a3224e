#include "Platform/Network/NetworkLibrary.h"

#include "Platform/Network/CurlSession.h"

extern "C" std::shared_ptr<platform::HTTPSession>
makeLumarinHTTPSession(platform::HTTPSessionConfiguration configuration,
                       const std::optional<std::filesystem::path>& authority) {
    return std::make_shared<platform::CurlSession>(configuration, authority);
}
