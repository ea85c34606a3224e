#include "Core/LocalizedError.h"

#include "Core/LocalizationManager.h"
#include "Platform/Foundation/HTTPError.h"

#include <nlohmann/json.hpp>

namespace lumarin {

namespace {

std::string sentence(const std::string& english) {
    return LocalizationManager::shared().localized(english, "Network");
}

} // namespace

std::string localizedDescription(const std::exception& error) {
    if (const auto* own = dynamic_cast<const LocalizedError*>(&error))
        return own->errorDescription();
    if (const auto* transport = dynamic_cast<const platform::HTTPError*>(&error))
        return transport->description(sentence(transport->key()));
    // The parser's own words are for programmers. A number too large for it is no parse_error.
    if (dynamic_cast<const nlohmann::json::parse_error*>(&error)
        || dynamic_cast<const nlohmann::json::out_of_range*>(&error))
        return sentence("The server’s response could not be read.");
    return error.what();
}

} // namespace lumarin
