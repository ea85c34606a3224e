#include "Platform/Foundation/Json.h"

#include <exception>
#include <gtest/gtest.h>
#include <vector>

using namespace platform;
using namespace std::string_literals;
using namespace std::string_view_literals;
using Dictionary = std::map<std::string, std::string>;

TEST(Json, ReadsAnObjectOfStrings) {
    for (const auto& [json, expected] : std::vector<std::pair<std::string_view, Dictionary>>{
             {"{}", {}},
             {" {\n} \r\n", {}},
             {"\xEF\xBB\xBF{\"a\":\"1\"}", {{"a", "1"}}},
             {R"({"a":"1","a":"2","":""})", {{"a", "2"}, {"", ""}}},
             {R"({"模式":"\u4f60\ud83d\ude00\n\u0000"})", {{"模式", "你😀\n\0"s}}},
         }) {
        EXPECT_EQ(decodeStringDictionary(json), expected) << json;
        EXPECT_EQ(decodeStringMembers(json), expected) << json;
        EXPECT_EQ(decodeStringDictionary(encodeStringDictionary(expected)), expected);
    }
    EXPECT_EQ(encodeStringDictionary({}), "{}");
    EXPECT_EQ(encodeStringDictionary({{"b", "\"\n"}, {"a", "你"}}), R"({"a":"你","b":"\"\n"})");
    EXPECT_THROW(encodeStringDictionary({{"a", "\xFF"}}), std::exception);
}

TEST(Json, RefusesWhatIsNotJson) {
    for (const std::string_view json : {""sv, " "sv, "{"sv, R"({"a")"sv, R"({"a":"1)"sv,
                                        R"({"a":"1"})"
                                        "x"sv,
                                        R"({"a":"1"}{})"sv, R"({"a":"1",})"sv, R"({a:"1"})"sv, "{'a':'1'}"sv,
                                        "{\"a\":\"\n\"}"sv, "{\"a\":\"\xFF\"}"sv, R"({"a":"\ud83d"})"sv,
                                        "{\"a\":\"1\"}\0x"sv, "// x\n{}"sv, "\xFF\xFE{\0}\0"sv}) {
        EXPECT_EQ(decodeStringDictionary(json), std::nullopt) << json;
        EXPECT_EQ(decodeStringMembers(json), std::nullopt) << json;
    }
    for (const std::string_view json : {"[]", "[{}]", "\"a\"", "1", "null", "true"}) {
        EXPECT_EQ(decodeStringDictionary(json), std::nullopt) << json;
        EXPECT_EQ(decodeStringMembers(json), std::nullopt) << json;
    }
}

TEST(Json, TakesOtherValuesOnlyWhereMembersAreAskedFor) {
    for (const std::string_view other : {"null", "true", "1", "-1", "1.5", "1e9", "[]",
                                         "[\"x\",{\"b\":\"y\"}]", "{}", "{\"a\":\"x\",\"b\":[[]]}"}) {
        const std::string value(other);
        EXPECT_EQ(decodeStringDictionary("{\"a\":\"1\",\"b\":" + value + "}"), std::nullopt) << value;
        EXPECT_EQ(decodeStringMembers("{\"a\":\"1\",\"b\":" + value + ",\"c\":\"3\"}"),
                  (Dictionary{{"a", "1"}, {"c", "3"}}))
            << value;
        EXPECT_EQ(decodeStringMembers("{\"a\":\"1\",\"a\":" + value + "}"), Dictionary{}) << value;
    }
}

TEST(Json, StandsDeepNesting) {
    constexpr std::size_t depth = std::size_t{4} << 20U;
    const std::string opened(depth, '[');
    const std::string closed(depth, ']');
    EXPECT_EQ(decodeStringDictionary(opened), std::nullopt);
    EXPECT_EQ(decodeStringDictionary("{\"a\":" + opened + closed + "}"), std::nullopt);
    EXPECT_EQ(decodeStringMembers("{\"a\":" + opened + closed + ",\"b\":\"2\"}"), (Dictionary{{"b", "2"}}));
}

TEST(Json, KnowsWhatIsNestedTooDeep) {
    const auto nested = [](int levels, const std::string& inside) {
        std::string json = inside;
        for (int level = 0; level < levels; ++level)
            json = level % 2 == 0 ? "[" + json + "]" : "{\"a\":" + json + "}";
        return json;
    };
    const std::pair<std::string, bool> cases[] = {
        {nested(32, ""), false},
        {nested(33, ""), true},
        {std::string(1'000'000, '['), true},
        {nested(31, "[],{}," + std::string(100, ' ') + "[[1]]"), true},
        {nested(31, "[1],[2],{}"), false}, // Side by side.
        {nested(31, R"("[[{{", "\"[[{{", "\\", [1])"), false},
        {nested(31, R"("\\\"", [["]"]])"), true},
    };
    for (const auto& [json, expected] : cases)
        EXPECT_EQ(isTooDeep(json), expected) << json.substr(0, 200);
}
