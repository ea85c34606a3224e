#include "Data/TerminologyDB.h"
#include "Support/HeadlessTest.h"

#include <random>

using namespace lumarin;
using namespace tests;

namespace {

class Terminology : public HeadlessTest {
protected:
    const std::filesystem::path file = dataFile("custom-terms.json");
};

} // namespace

TEST_F(Terminology, FindsEveryBuiltInTermInAText) {
    const TerminologyDB terms;
    EXPECT_EQ(terms.allTerms().size(), 96U);
    const std::pair<const char*, TermDictionary> cases[] = {
        {"我们要报价", {{"报价", "Quote / Quotation"}}},
        {"交货期是多久", {{"交货期", "Lead Time"}, {"货期", "Lead Time"}}},
        {"这是一个40尺高柜", {{"高柜", "40HQ (40ft High Cube)"}, {"柜", "Container"}}},
        {"最小起订量", {{"最小起订量", "MOQ (Minimum Order Quantity)"}, {"起订量", "MOQ"}}},
        {"No Chinese here", {}},
        {"", {}},
        {"报\xe6\x8a", {}},
    };
    for (const auto& [text, found] : cases)
        EXPECT_EQ(terms.findRelevantTerms(text), found) << text;
}

TEST_F(Terminology, CustomTermsReplaceBuiltInOnesAndABadFileAddsNone) {
    writeFile(file, R"({"样品": "Specimen", "Widget": "widget", "": "nothing"})");
    EXPECT_EQ(TerminologyDB().findRelevantTerms("样品 Widgets"),
              (TermDictionary{{"样品", "Specimen"}, {"Widget", "widget"}}));
    for (const char* bad : {R"(["样品"])", R"({"样品": "Specimen", "数": 5})", R"({"样品": null})", "{"}) {
        writeFile(file, bad);
        EXPECT_EQ(TerminologyDB().findRelevantTerms("样品"), (TermDictionary{{"样品", "Sample"}})) << bad;
    }
}

TEST_F(Terminology, ChangesKeepFileAndMemoryTheSame) {
    TerminologyDB terms;
    // A person may have changed the file since it was read.
    writeFile(file, R"({"图纸": "Drawing"})");
    terms.addCustomTerm("样品", "Specimen");
    terms.addCustomTerm("模具", "Mould");
    terms.removeCustomTerm("模具");
    const TermDictionary expected{{"图纸", "Drawing"}, {"样品", "Specimen"}};
    EXPECT_EQ(terms.findRelevantTerms("样品模具图纸"), expected);
    EXPECT_EQ(TerminologyDB().findRelevantTerms("样品模具图纸"), expected);
    terms.removeCustomTerm("样品");
    EXPECT_EQ(terms.findRelevantTerms("样品"), (TermDictionary{{"样品", "Sample"}}));

    writeFile(file, "[a person's notes]");
    EXPECT_THROW(terms.addCustomTerm("样品", "Specimen"), std::runtime_error);
    EXPECT_EQ(bytesOf(file), "[a person's notes]");
}

TEST(TermIndex, FindsWhatAPlainScanFinds) {
    std::mt19937 random(20261122);
    auto pick = [&](std::size_t below) {
        return std::uniform_int_distribution<std::size_t>(0, below - 1)(random);
    };
    // Few letters, so that terms overlap, contain and begin with one another.
    const std::string letters[] = {"a", "b", "é", "货", "期", "贼", "😀", "\xe8"};
    auto word = [&](std::size_t length, std::size_t alphabet) {
        std::string made;
        for (std::size_t i = 0; i < length; ++i)
            made += letters[pick(alphabet)];
        return made;
    };
    for (int round = 0; round < 300; ++round) {
        TermDictionary terms;
        for (std::size_t i = pick(40); i > 0; --i)
            terms.emplace(word(1 + pick(5), 7), std::to_string(i));
        const std::string text = word(pick(60), 8);
        TermDictionary expected;
        for (const auto& term : terms)
            if (text.find(term.first) != std::string::npos)
                expected.insert(term);
        ASSERT_EQ(TermIndex(terms).termsIn(text), expected) << text;
    }
}
