#pragma once

#include "Platform/Updates/AppcastItem.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

// A feed and its own signature, which stands in a comment at its end. Views into the feed.
struct SignedFeed {
    // What is signed; all of it if nothing is.
    std::string_view content;
    // In base64, as it stands there; none if the feed is not signed, and empty if the comment makes no sense.
    std::optional<std::string_view> signature;
};

SignedFeed splitSignature(std::string_view feed);

// A list of updates. Value.
struct Appcast {
    // When it was signed and until when it holds, as in 2026-11-16T18:35:58Z; both empty if it does not say.
    // Of two such texts the later moment is the greater one.
    std::string signedAt;
    std::string expires;
    // The versions for this kind of system and for everybody, in its order.
    std::vector<AppcastItem> items;
};

// Reads an appcast (RSS 2.0). Items that cannot be read as such are left out. Notes are taken in `language`,
// where the feed has several. Throws UpdateError for what is no appcast. Any thread.
Appcast parseAppcast(std::string_view content, std::string_view language);

} // namespace platform
