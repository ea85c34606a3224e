#include "Platform/Foundation/Text.h"

#include <gtest/gtest.h>
#include <vector>

using namespace platform;
using namespace std::string_view_literals;

namespace {

struct Sample {
    std::string_view input;
    std::string_view expected;
};

const std::string replacement = "\uFFFD";

} // namespace

TEST(Text, CountsCharactersAsAReaderSeesThem) {
    const std::vector<std::vector<std::string_view>> samples = {
        {},
        {"a", "b"},
        {"\r\n", "\n", "\r"},
        {"\n", "\r", "\r\n"},
        {"👨‍👩‍👧‍👦", "👍🏽", "❤️", "1️⃣"},
        {"🇩🇪", "🇫🇷", "🇯"},
        {"e\u0301", "o\u0308\u0323", "ñ"},
        {"\u1112\u1161\u11AB", "한", "글"},
        {"你", "好", "，", "世", "界"},
        {"नि", "กำ"},
        {"a", "\xFF", "\xE4\xBD", "b"},
    };
    for (const auto& characters : samples) {
        std::string whole;
        for (const std::string_view character : characters)
            whole += character;
        EXPECT_EQ(text::characterCount(whole), characters.size()) << whole;
        std::string beginning;
        for (std::size_t count = 0; count <= characters.size(); ++count) {
            EXPECT_EQ(text::prefix(whole, count), beginning) << whole << " " << count;
            if (count < characters.size())
                beginning += characters[count];
        }
        EXPECT_EQ(text::prefix(whole, characters.size() + 7), whole);
    }
}

TEST(Text, TrimsTheWhiteSpaceOfAnyScriptAtBothEndsOnly) {
    for (const std::string_view space :
         {" ", "\t", "\r\n", "\v\f", "\u0085", "\u00A0", "\u1680", "\u2000", "\u200A", "\u200B", "\u2028",
          "\u2029", "\u202F", "\u205F", "\u3000"}) {
        std::string padded(space);
        padded.append(space);
        EXPECT_EQ(text::trimmed(padded), "") << space;
        padded.append("a").append(space).append("好").append(space);
        EXPECT_EQ(text::trimmed(padded), std::string("a").append(space).append("好")) << space;
    }
    for (const std::string_view kept : {"", "a", "\u200C", "\uFEFF", "\u180E", "\xC2", "\xA0"})
        EXPECT_EQ(text::trimmed(kept), kept);
}

TEST(Text, IsReadFromTheSideOfItsFirstLetter) {
    for (const std::string_view fromTheRight : {"مرحبا", "שלום", "مرحبا Hello", "500 قطعة", " «٥» ؟ ش",
                                                "😀\xFF مرحبا", "\u2066FOB\u2069 سعر", "\u200Fabc"})
        EXPECT_TRUE(text::isRightToLeft(fromTheRight)) << fromTheRight;
    for (const std::string_view fromTheLeft :
         {"", "500?", "٥٠٠", "\xFF", "Hello مرحبا", "你好 שלום", "500 pcs قطعة", "\u2067سعر\u2069 FOB", "😀"})
        EXPECT_FALSE(text::isRightToLeft(fromTheLeft)) << fromTheLeft;
}

TEST(Text, RepairsEachBrokenSequenceOnce) {
    const std::vector<std::pair<std::string_view, std::string>> samples = {
        {"\xFF", replacement},
        {"a\x80z", "a" + replacement + "z"},
        {"\xC3", replacement},                                     // truncated
        {"\xE4\xBD|", replacement + "|"},                          // one for the two
        {"\xF0\x9F\x98", replacement},                             // one for the three
        {"\xC0\xAF", replacement + replacement},                   // overlong
        {"\xE0\x80\x80", replacement + replacement + replacement}, // overlong
        {"\xED\xA0\x80", replacement + replacement + replacement}, // a surrogate
        {"\xF4\x90\x80\x80", replacement + replacement + replacement + replacement},
        {"\xF1\x80\x80\xE1\x80\xC2z", replacement + replacement + replacement + "z"},
    };
    for (const auto& [broken, repaired] : samples) {
        EXPECT_FALSE(text::isValid(broken));
        EXPECT_EQ(text::repaired(broken), repaired);
    }
    for (const std::string_view valid :
         {""sv, "a\0b"sv, "\x7F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U0010FFFF"sv}) {
        EXPECT_TRUE(text::isValid(valid));
        EXPECT_EQ(text::repaired(valid), valid);
    }
}

TEST(Text, FillsFormatsInTheOrderOfEachLanguage) {
    for (const auto& [pattern, expected] : std::vector<Sample>{
             {"%@ (%@)", "one (two)"},
             {"%2$@: %1$@", "two: one"},
             {"%2$@%@%@%@|", "twoonetwo|"},
             {"100%% %@", "100% one"},
             {"%%@", "%@"},
             {"%d %s %0$@ %1$d %3", "%d %s %0$@ %1$d %3"},
             {"[%9$@]", "[]"},
             {"%", "%"},
             {"%1$", "%1$"},
         })
        EXPECT_EQ(text::format(pattern, {"one", "two"}), expected) << pattern;
    EXPECT_EQ(text::format("%@ %@", {"%@", "b"}), "%@ b") << "an argument is not a format";
}

TEST(Text, ReadsUTF16OfBothOrders) {
    for (const auto& [bigEndian, expected] : std::vector<Sample>{
             {"\0a\x4F\x60\xD8\x3D\xDE\x00"sv, "a你😀"},
             {"\xD8\x3D\0a"sv, "\uFFFDa"},
             {"\xD8\x3D\xD8\x3D\xDE\x00"sv, "\uFFFD😀"},
             {"\xDE\x00"sv, "\uFFFD"},
             {"\xD8\x3D"sv, "\uFFFD"},
             {"\0a\0"sv, "a\uFFFD"},
             {""sv, ""},
         }) {
        std::string littleEndian(bigEndian);
        for (std::size_t i = 0; i + 1 < littleEndian.size(); i += 2)
            std::swap(littleEndian[i], littleEndian[i + 1]);
        EXPECT_EQ(text::fromUTF16(bigEndian, text::ByteOrder::bigEndian), expected);
        EXPECT_EQ(text::fromUTF16(littleEndian, text::ByteOrder::littleEndian), expected);
    }
}
