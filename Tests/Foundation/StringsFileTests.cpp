#include "Platform/Foundation/StringsFile.h"

#include <gtest/gtest.h>
#include <vector>

using namespace platform;
using namespace std::string_view_literals;
using Table = std::map<std::string, std::string>;

namespace {

std::string asUTF16(std::u16string_view text, bool bigEndian, bool withMark) {
    std::string bytes;
    const auto add = [&](char16_t unit) {
        const auto high = static_cast<char>(unit >> 8U);
        const auto low = static_cast<char>(unit & 0xFFU);
        bytes += bigEndian ? std::string{high, low} : std::string{low, high};
    };
    if (withMark)
        add(0xFEFF);
    for (const char16_t unit : text)
        add(unit);
    return bytes;
}

} // namespace

TEST(StringsFile, ReadsPairsWhateverTheirLayout) {
    for (const auto& [file, expected] : std::vector<std::pair<std::string_view, Table>>{
             {"", {}},
             {"\xEF\xBB\xBF", {}},
             {" // only \n /* comments \n ; \" */ // here", {}},
             {"\xEF\xBB\xBF\"a\"=\"1\";", {{"a", "1"}}},
             {"/* */\"a\" /**/ = // \r\n\t\"1\" /*;*/ ;\"b\"=\"2\";", {{"a", "1"}, {"b", "2"}}},
             {"menu.quit = Quit; $x_1-y = 2;", {{"menu.quit", "Quit"}, {"$x_1-y", "2"}}},
             {"a/*x*/=b//y\n;", {{"a", "b"}}},
             {"\"alone\"; bare;", {{"alone", "alone"}, {"bare", "bare"}}},
             {"a = 1; a = 2;", {{"a", "2"}}},
             {"\"\" = \"\";", {{"", ""}}},
             {"\"键 // /*\" = \"值 */ = ;\n二\";", {{"键 // /*", "值 */ = ;\n二"}}},
         })
        EXPECT_EQ(parseStrings(file), expected) << file;
}

TEST(StringsFile, ReadsEscapes) {
    for (const auto& [written, expected] : std::vector<std::pair<std::string_view, std::string_view>>{
             {R"(\"\'\\)", "\"'\\"},
             {R"(\n\r\t\a\b\f\v)", "\n\r\t\a\b\f\v"},
             {"one\\\ntwo", "one\ntwo"},
             {R"(\0|\101\1012\48\351)", "\0|AA2\4"
                                        "8é"sv},
             {R"(\U4f60\u597D\U0041)", "你好A"},
             {R"(\Ud83d\Ude00\uD83D\uDE00)", "😀😀"},
             {R"(\Ud83d|\Ude00|\Ud83d\U0041|\Ud83d\Ud83d\Ude00|\Ud83d\n)",
              "\uFFFD|\uFFFD|\uFFFDA|\uFFFD😀|\uFFFD\n"},
             {R"(\%\@)", "%@"},
         }) {
        const std::string file = "\"k\" = \"" + std::string(written) + "\";";
        EXPECT_EQ(parseStrings(file), (Table{{"k", std::string(expected)}})) << file;
    }
}

TEST(StringsFile, ReadsUTF16WithAndWithoutAMark) {
    const std::u16string_view file = u"/* 注释 */ \"mode\" = \"优雅😀\";\n";
    for (const bool bigEndian : {false, true})
        for (const bool withMark : {false, true})
            EXPECT_EQ(parseStrings(asUTF16(file, bigEndian, withMark)), (Table{{"mode", "优雅😀"}}))
                << bigEndian << withMark;
    EXPECT_EQ(parseStrings("\xFF\xFE"), Table{});
    EXPECT_EQ(parseStrings(asUTF16(file, true, true) + "\""), std::nullopt);
}

TEST(StringsFile, IsNoTableWhenAnythingIsMalformed) {
    for (const std::string_view file : {
             "\"a\" = \"1\""sv,
             "\"a\" = ;"sv,
             "\"a\" \"1\";"sv,
             "= \"1\";"sv,
             ";"sv,
             "\"a\" = \"1\";;"sv,
             "\"a\" = \"1"sv,
             "\"a\" = \"1\\"sv,
             "\"a\" = \"\\U12\";"sv,
             "\"a\" = \"\\U00g0\";"sv,
             "\"a\" = { b = c; };"sv,
             "/* \"a\" = \"1\";"sv,
             "\"a\" = \"1\"; x"sv,
             "\"a\" = \"\xFF\";"sv,
             "键 = 1;"sv,
             "\0\0"sv,
             "{\"a\": \"1\"}"sv,
         })
        EXPECT_EQ(parseStrings(file), std::nullopt) << file;
    EXPECT_EQ(parseStrings(std::string(1 << 20, '(')), std::nullopt);
}
