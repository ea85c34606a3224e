#include "Core/LocalizedError.h"

namespace lumarin {

std::string localizedDescription(const std::exception& error) {
    auto localized = dynamic_cast<const LocalizedError*>(&error);
    return localized ? localized->errorDescription() : error.what();
}

} // namespace lumarin
