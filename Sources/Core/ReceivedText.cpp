#include "Core/ReceivedText.h"

#include "Platform/Foundation/HTTPError.h"

namespace lumarin {

void appendReceived(std::string& translation, std::string_view piece) {
    translation += platform::text::withoutControls(piece);
    if (translation.size() > maximumTranslation)
        throw platform::HTTPError("The server’s response is too long.");
}

} // namespace lumarin
