#include "Platform/Desktop/Painting/EmojiRanges.h"

#include <algorithm>
#include <array>

namespace platform::desktop {
namespace {

constexpr char32_t textSelector = 0xFE0E;
constexpr char32_t emojiSelector = 0xFE0F;
constexpr char32_t joiner = 0x200D;

struct Block {
    char32_t first;
    char32_t last;
};

// What is shown as a picture without being asked, in order.
constexpr auto pictures = std::to_array<Block>({
    {0x231A, 0x231B},   {0x23E9, 0x23EC},   {0x23F0, 0x23F0},   {0x23F3, 0x23F3},   {0x25FD, 0x25FE},
    {0x2614, 0x2615},   {0x2648, 0x2653},   {0x267F, 0x267F},   {0x2693, 0x2693},   {0x26A1, 0x26A1},
    {0x26AA, 0x26AB},   {0x26BD, 0x26BE},   {0x26C4, 0x26C5},   {0x26CE, 0x26CE},   {0x26D4, 0x26D4},
    {0x26EA, 0x26EA},   {0x26F2, 0x26F3},   {0x26F5, 0x26F5},   {0x26FA, 0x26FA},   {0x26FD, 0x26FD},
    {0x2705, 0x2705},   {0x270A, 0x270B},   {0x2728, 0x2728},   {0x274C, 0x274C},   {0x274E, 0x274E},
    {0x2753, 0x2755},   {0x2757, 0x2757},   {0x2795, 0x2797},   {0x27B0, 0x27B0},   {0x27BF, 0x27BF},
    {0x2B1B, 0x2B1C},   {0x2B50, 0x2B50},   {0x2B55, 0x2B55},   {0x1F004, 0x1F004}, {0x1F0CF, 0x1F0CF},
    {0x1F18E, 0x1F18E}, {0x1F191, 0x1F19A}, {0x1F1E6, 0x1F1FF}, {0x1F201, 0x1F201}, {0x1F21A, 0x1F21A},
    {0x1F22F, 0x1F22F}, {0x1F232, 0x1F23A}, {0x1F250, 0x1F251}, {0x1F300, 0x1F64F}, {0x1F680, 0x1F6FF},
    {0x1F7E0, 0x1F7EB}, {0x1F900, 0x1F9FF}, {0x1FA70, 0x1FAFF},
});

constexpr bool isIn(char32_t character, Block block) {
    return character >= block.first && character <= block.last;
}

bool isPicture(char32_t character) {
    const auto* after = std::ranges::upper_bound(pictures, character, {}, &Block::first);
    return after != pictures.begin() && character <= after[-1].last;
}

// A skin's tone, a region of a flag, an enclosing key, or the wish for a picture.
constexpr bool continuesPicture(char32_t character) {
    return character == emojiSelector || character == 0x20E3 || isIn(character, {0x1F3FB, 0x1F3FF})
           || isIn(character, {0xE0020, 0xE007F});
}

} // namespace

std::vector<TextRange> emojiRanges(const QString& text) {
    const auto characters = text.toStdU32String();
    std::vector<TextRange> ranges;
    qsizetype place = 0;
    bool wasPicture = false;
    bool isJoined = false;
    for (std::size_t index = 0; index < characters.size(); ++index) {
        const auto character = characters[index];
        const auto next = index + 1 < characters.size() ? characters[index + 1] : 0;
        const bool continues = wasPicture && (isJoined || character == joiner || continuesPicture(character));
        const bool isEmoji =
            continues || next == emojiSelector || (isPicture(character) && next != textSelector);
        const qsizetype units = character > 0xFFFF ? 2 : 1;
        if (isEmoji && wasPicture)
            ranges.back().length += units;
        else if (isEmoji)
            ranges.push_back({place, units});
        isJoined = isEmoji && character == joiner;
        wasPicture = isEmoji;
        place += units;
    }
    return ranges;
}

} // namespace platform::desktop
