#include "Service/Gloss/Gloss.h"

#include "Data/BuiltinTerms.h"
#include "Service/Engine/Refusal.h"
#include "Service/Gloss/Phrases.h"

#include <algorithm>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/io_context.hpp>
#include <ctime>
#include <gtest/gtest.h>
#include <set>

using namespace lumarin::service;

namespace {

void expectGlosses(const std::vector<std::pair<const char*, const char*>>& cases) {
    const Gloss gloss;
    for (const auto& [chinese, english] : cases)
        EXPECT_EQ(gloss.text(chinese), english) << chinese;
}

constexpr auto never = Translation::Clock::time_point::max();

// What comes next, however long that takes.
Progress next(Translation& translation) {
    Progress progress = translation.next();
    while (progress.kind == Progress::Kind::nothingYet) {
        boost::asio::io_context loop;
        boost::asio::co_spawn(loop, translation.wait(never), boost::asio::detached);
        loop.run();
        progress = translation.next();
    }
    return progress;
}

} // namespace

TEST(Gloss, PutsTradeLettersIntoReadableEnglish) {
    expectGlosses({
        {"您好，请问这款样品的报价是多少？最小起订量是500件吗？",
         "Hello, may I ask about this sample, what is the quote? MOQ is 500 pcs?"},
        {"请把形式发票发给我们，我们会尽快安排付款。",
         "Please send the proforma invoice to us, we will promptly arrange payment."},
        {"很抱歉，由于春节假期，货期会推迟一周。", "We are very sorry, because of the Chinese New Year "
                                                   "holiday, lead time will be delayed by one week."},
        {"这个价格太高了，我们无法接受。", "This price too high, we cannot accept."},
    });
}

TEST(Gloss, TakesTheLongestPhraseAndSetsQuestionsApartFromWhatTheyAreAbout) {
    expectGlosses({
        {"最小起订量", "MOQ"}, // not 起订量 behind something unknown
        {"交货期", "Lead time"},
        {"提单和电汇", "B/L and T/T"},
        {"我们要打样", "We want make a sample"},
        {"高柜", "40HQ"},
        {"价格是多少？", "What is the price?"},
        {"FOB 的价格是多少？", "FOB, what is the price?"},
        {"MOQ 是多少？", "MOQ, how much is it?"},
    });
}

TEST(Gloss, ReadsFiguresWithTheirUnitsAndDates) {
    expectGlosses({
        {"500件", "500 pcs"},
        {"1个月或30 天", "1 month or 30 days"},
        {"5万件样品", "5 x 10,000 pcs sample"},
        {"件", "件"}, // a unit of nothing
        {"3月5日", "March 5"},
        {"在2025年12月31号之前发货", "Before December 31, 2025 ship"},
        {"2025年3月后", "After March 2025"},
        {"13月，123月5日", "13月, 123月5日"},
    });
}

TEST(Gloss, LeavesTheUnknownWholeAndTextWithoutChineseByteForByte) {
    expectGlosses({
        {"和平饭店", "和平饭店"}, // "and" is no word of a name
        {"样品在和平饭店", "Sample in 和平饭店"},
        {"苹果的价格", "苹果 price"},
        {"@张三 😊谢谢！👨‍👩‍👧", "@张三 😊 thank you! 👨‍👩‍👧"},
        {"https://example.com/a?b=1&c=样品", "https://example.com/a?b=1&c=sample"},
        {"见https://example.com/a_b(1)，谢谢", "见https://example.com/a_b(1), thank you"},
    });
    for (const char* text :
         {"", " ", "Hello,  world !\r\n\t- FOB 5.5 USD", "， “OK”。", "こんにちは", "Ça va ? 😊", "don’t"})
        expectGlosses({{text, text}});
}

TEST(Gloss, WritesPunctuationSpacesAndCapitalsAsEnglishDoes) {
    expectGlosses({
        {"样品：红色；包装（黑色）！好的……", "Sample: red; packaging (black)! OK..."},
        {"产品《样品》、“目录”", "Products “sample”, “catalog”"},
        {"样品,价格(单价)。样品\"目录\"。", "Sample, price (unit price). Sample \"catalog\"."},
        {"30%定金，5%～10％折扣", "30% deposit, 5%~10% discount"},
        {"1、价格\n2、交期、货期", "1. Price\n2. Lead time, lead time"},
        {"样品\r\n\r\n　　价格", "Sample\r\n\r\n　　Price"},
        {"OK. 样品 FOB 价格", "OK. Sample FOB price"},
        {"OK 吗？", "OK?"},
        {"付款后，发货", "After payment, ship"},
    });
}

TEST(Gloss, HandsOutTheWholeTextWordByWord) {
    const Gloss gloss;
    std::string longText = "样" + std::string(100'000, '1') + "\n";
    for (int number = 0; number < 25'000; ++number)
        longText += number % 3 == 0 ? "价、" : number % 3 == 1 ? "样品 ，" : "，。";
    const auto start = std::clock();
    for (const std::string text : {"您好，\n\n请问 FOB 价格？ ", " \n", "好", "", longText.c_str()}) {
        auto translation = gloss.begin({.text = text, .systemPrompt = "", .targetLanguage = "EN"}, never);
        std::string whole;
        for (Progress step; (step = next(*translation)).kind != Progress::Kind::complete;) {
            auto word = step.piece.find_first_not_of(" \n");
            EXPECT_EQ(step.piece.find_first_of(" \n", std::min(word, step.piece.size())), std::string::npos)
                << step.piece;
            whole += step.piece;
        }
        EXPECT_EQ(whole, gloss.text(text));
    }
    EXPECT_LT((std::clock() - start) / CLOCKS_PER_SEC, 10); // In proportion to its length.
    auto late = gloss.begin({.text = longText, .systemPrompt = "", .targetLanguage = "EN"},
                            std::chrono::steady_clock::now());
    EXPECT_THROW(next(*late), Refusal);
}

TEST(Phrases, AreWellFormedAndStandOnlyOnce) {
    std::set<std::string_view> seen;
    for (const auto& term : lumarin::builtinTerms)
        seen.insert(term.chinese);
    for (auto table : {phrases::littleWords, phrases::courtesies, phrases::questions, phrases::connections,
                       phrases::times, phrases::actions, phrases::things}) {
        while (table.size() > 1) {
            table.remove_prefix(1);
            auto phrase = table.substr(0, table.find(';'));
            auto chinese = phrase.substr(0, phrase.find(' '));
            auto english = phrase.substr(chinese.size());
            EXPECT_TRUE(seen.insert(chinese).second) << chinese;
            EXPECT_TRUE(std::ranges::all_of(english, [](char byte) { return byte >= ' ' && byte <= '~'; }))
                << phrase;
            EXPECT_GE(chinese[0] & 0x80, 0x80) << phrase;
            table.remove_prefix(phrase.size() + 1);
        }
    }
}
