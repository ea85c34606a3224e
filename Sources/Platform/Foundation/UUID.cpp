#include "Platform/Foundation/UUID.h"

#include <random>
#include <string_view>

namespace platform {

std::string randomUUID() {
    std::random_device source;
    // The fixed digits are the version (4) and the variant (8 to B).
    std::string uuid = "xxxxxxxx-xxxx-4xxx-Yxxx-xxxxxxxxxxxx";
    for (char& character : uuid) {
        const unsigned digit = source() & 0xFU;
        if (character == 'x')
            character = std::string_view("0123456789ABCDEF")[digit];
        else if (character == 'Y')
            character = std::string_view("89AB")[digit & 0x3U];
    }
    return uuid;
}

} // namespace platform
