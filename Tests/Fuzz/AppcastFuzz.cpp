#include "Platform/Foundation/Text.h"
#include "Platform/Updates/Appcast.h"
#include "Platform/Updates/PublicKey.h"
#include "Platform/Updates/UpdateError.h"
#include "Platform/Updates/Version.h"
#include "Require.h"

#include <cstdint>

using namespace platform;

// An update feed, from the bytes to what a person is shown of it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const SignedFeed feed = splitSignature(bytes);
    require(bytes.starts_with(feed.content) && (feed.signature || feed.content.size() == size));
    if (feed.signature)
        decodeBase64(*feed.signature);
    try {
        const Appcast appcast = parseAppcast(feed.content, "zh-Hans");
        require(appcast.signedAt.size() == appcast.expires.size());
        for (const AppcastItem& item : appcast.items) {
            require(version::isValid(item.versionString));
            require(version::compare(item.versionString, item.versionString) == 0);
            require(!item.displayVersionString.empty());
            require(item.signature.empty() || item.signature.size() == PublicKey::signatureLength);
            for (const std::string& shown :
                 {item.displayVersionString, item.releaseNotes, item.releaseNotesURL}) {
                require(text::isValid(shown));
                require(text::characterCount(shown) < 5000);
            }
        }
    } catch (const UpdateError&) {
        // Most inputs are no feed.
    }
    return 0;
}
