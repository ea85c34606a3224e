#include "Platform/Foundation/LineSplitter.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <vector>

using namespace platform;
using Lines = std::vector<std::string>;

namespace {

Lines linesOf(const std::vector<std::string_view>& pieces) {
    LineSplitter splitter;
    Lines lines;
    const auto drain = [&] {
        while (auto line = splitter.next())
            lines.push_back(*std::move(line));
    };
    for (const std::string_view piece : pieces) {
        splitter.append(piece);
        drain();
    }
    splitter.finish();
    drain();
    return lines;
}

} // namespace

TEST(LineSplitter, GivesTheSameLinesWhereverTheBytesAreSplit) {
    const std::vector<std::pair<std::string_view, Lines>> samples = {
        {"", {}},
        {"rest", {"rest"}},
        {"\n", {""}},
        {"\r", {""}},
        {"\r\n", {""}},
        {"\n\r", {"", ""}},
        {"\r\r\n\n", {"", "", ""}},
        {"data: 你好\r\n\r\n: ping\rdata: 😀\n\nlast", {"data: 你好", "", ": ping", "data: 😀", "", "last"}},
        {"bad \xE4\xBD\n\x80", {"bad \uFFFD", "\uFFFD"}},
    };
    for (const auto& [bytes, lines] : samples) {
        EXPECT_EQ(linesOf({bytes}), lines) << bytes;
        std::vector<std::string_view> single;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            single.push_back(bytes.substr(i, 1));
            for (std::size_t j = i; j <= bytes.size(); ++j)
                EXPECT_EQ(linesOf({bytes.substr(0, i), bytes.substr(i, j - i), bytes.substr(j)}), lines)
                    << bytes << " at " << i << " and " << j;
        }
        EXPECT_EQ(linesOf(single), lines) << bytes;
    }
}

TEST(LineSplitter, HandsOutALineAtItsCarriageReturnAndTheRestOnlyWhenFinished) {
    LineSplitter splitter;
    splitter.append("one\rtw");
    EXPECT_EQ(splitter.next(), "one");
    EXPECT_EQ(splitter.next(), std::nullopt);
    splitter.append("o\r");
    EXPECT_EQ(splitter.next(), "two");
    splitter.append("\n");
    EXPECT_EQ(splitter.next(), std::nullopt);
    splitter.append("three");
    EXPECT_EQ(splitter.next(), std::nullopt);
    splitter.finish();
    EXPECT_EQ(splitter.next(), "three");
    EXPECT_EQ(splitter.next(), std::nullopt);
}

TEST(LineSplitter, RefusesALineThatIsTooLongAfterThoseBeforeIt) {
    const std::string longest(LineSplitter::maximumLineLength, 'x');
    EXPECT_EQ(linesOf({longest, "\r\n", longest}), (Lines{longest, longest}));

    for (const std::string_view end : {"", "\n", "\nmore\n"}) {
        LineSplitter splitter;
        splitter.append("before\n" + longest + "y" + std::string(end));
        EXPECT_EQ(splitter.next(), "before");
        EXPECT_THROW(splitter.next(), std::length_error);
        splitter.append("\nafter\n");
        EXPECT_THROW(splitter.next(), std::length_error);
    }
}

// Work in proportion to the square of the bytes would keep these going for many minutes.
TEST(LineSplitter, TakesManySmallPiecesAndManyWaitingLines) {
    LineSplitter bytewise;
    for (std::size_t i = 0; i < LineSplitter::maximumLineLength; ++i) {
        bytewise.append("x");
        ASSERT_EQ(bytewise.next(), std::nullopt);
    }

    constexpr std::size_t lines = std::size_t{2} << 20U;
    LineSplitter waiting;
    waiting.append(std::string(lines, '\n'));
    for (std::size_t i = 0; i < lines; ++i) {
        ASSERT_EQ(waiting.next(), "");
        waiting.append("\n");
    }
    for (std::size_t i = 0; i < lines; ++i)
        ASSERT_EQ(waiting.next(), "");
    EXPECT_EQ(waiting.next(), std::nullopt);
}
