#include "Service/Gloss/UTF8.h"

namespace lumarin::service {

std::string_view characterAt(std::string_view text, std::size_t position) {
    auto continues = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; };
    std::size_t end = position + 1;
    while (end < text.size() && continues(text[end]))
        ++end;
    return text.substr(position, end - position);
}

bool isHan(std::string_view character) {
    // UTF-8 keeps the order of the code points, so ranges can be compared as bytes.
    auto within = [&](std::string_view first, std::string_view last) {
        return character.size() == first.size() && character >= first && character <= last;
    };
    return character == "〇" || within("\u3400", "\u4DBF") || within("\u4E00", "\u9FFF")
           || within("\U00020000", "\U0003FFFF");
}

} // namespace lumarin::service
