#include "Platform/Foundation/Json.h"
#include "Require.h"

#include <cstdint>

using namespace platform;

// What is decoded must survive being encoded, and the lenient reading must see all the strict one sees.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const auto dictionary = decodeStringDictionary(bytes);
    const auto members = decodeStringMembers(bytes);
    if (dictionary)
        require(members == dictionary);
    if (members) {
        const std::string encoded = encodeStringDictionary(*members);
        require(decodeStringDictionary(encoded) == members);
        require(decodeStringDictionary(encoded + "x") == std::nullopt);
    }
    return 0;
}
