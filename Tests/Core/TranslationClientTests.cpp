#include "Core/DeviceID.h"
#include "Core/FreeTranslator.h"
#include "Core/LLMTranslator.h"
#include "Core/TranslationError.h"
#include "Core/TranslationPrompt.h"
#include "Support/HeadlessTest.h"
#include "Support/Streams.h"

using namespace lumarin;
using namespace tests;
using namespace std::string_literals;
using platform::headless::ScriptedAnswer;

namespace {

class TranslationClients : public HeadlessTest {
protected:
    TranslationClients() {
        host.network.respond = [this](const platform::HTTPRequest&) { return answer; };
    }

    // The result, or the error's printed form.
    std::string stream(const std::string& body) {
        answer.pieces = {body};
        reports.clear();
        try {
            return finish(
                translator.translateStream("报价", StylePreset::casual, TargetLanguage::english,
                                           [this](const std::string& soFar) { reports.push_back(soFar); }));
        } catch (const std::exception& error) {
            return error.what();
        }
    }

    std::string translateFree() {
        try {
            return finish(free.translate("hi", TargetLanguage::french));
        } catch (const TranslationError& error) {
            return error.what();
        }
    }

    ScriptedAnswer answer;
    LLMTranslator translator;
    FreeTranslator free;
    std::vector<std::string> reports;
};

} // namespace

TEST_F(TranslationClients, StreamReportsTheWholeTextSoFarAndSkipsWhatIsNoContent) {
    using Reports = std::vector<std::string>;
    const std::string x = deltaLine("X");
    const auto choices = [](const std::string& json) { return "data: {\"choices\":" + json + "}\n"; };
    const std::string deep = std::string(33, '[') + std::string(33, ']');
    const std::tuple<std::string, std::string, Reports> cases[] = {
        {x + deltaLine("Y") + deltaLine("Z"), "XYZ", {"X", "XY", "XYZ"}},
        {deltaLine("\n X") + deltaLine(" \u3000"), "X", {"\n X", "\n X \u3000"}},
        {"data: [DONE]\n" + x, "emptyResponse", {}},
        {deltaLine(" ") + deltaLine("\n"), "", {" ", " \n"}},
        {deltaLine("") + x, "X", {"", "X"}},
        {": keep alive\nevent: delta\ndata:{}\nid: 1\n\n" + x, "X", {"X"}},
        {"data: not json\ndata: [1]\ndata: \"s\"\ndata: \n" + x, "X", {"X"}},
        {choices("[]") + choices("[{}]") + choices("{\"0\":1}") + x, "X", {"X"}},
        {choices("[{\"delta\":{}}]") + choices("[{\"delta\":[]}]") + x, "X", {"X"}},
        {choices("[{\"delta\":{\"content\":null}}]") + x, "X", {"X"}},
        {choices("[{\"delta\":{\"content\":\"a\"}},1]") + x, "X", {"X"}},
        {"data: {\"choices\":[{\"delta\":{\"content\":\"\\ud83d\\ude00\"}}]}\r\ndata: [DONE]", "😀", {"😀"}},
        {"data: {\"choices\":[{\"delta\":{\"content\":\"a\xff\"}}]}\r", "a\uFFFD", {"a\uFFFD"}},
        {"data: " + std::string(200'000, '[') + "\n" + x, "X", {"X"}},
        {choices("[{\"delta\":{\"content\":\"a\"}}],\"n\":" + deep) + x, "X", {"X"}},
        {choices("[{\"delta\":{\"content\":\"a\"}}],\"n\":1e999") + x, "X", {"X"}},
        {"data: {\"choices\":[{\"delta\":{\"content\":\"a\"}}]}\0\n"s + x, "X", {"X"}},
        {choices("[{\"delta\":{\"content\":\"a\\u0000\\u202e\"}}]") + x, "aX", {"a", "aX"}},
        {deltaLine("\x1b"), "emptyResponse", {""}},
    };
    for (const auto& [body, result, reported] : cases) {
        EXPECT_EQ(stream(body), result) << body.substr(0, 100);
        EXPECT_EQ(reports, reported) << body.substr(0, 100);
    }
}

TEST_F(TranslationClients, ErrorsCarryTheBeginningOfTheAnswer) {
    answer.status = 500;
    std::string body;
    std::string expected;
    for (int count = 0; count < 500; ++count) {
        body += "好\r\n";
        expected += count < 200 ? "好" : "";
    }
    EXPECT_EQ(stream(body), "apiError(\"HTTP 500: " + expected + "\")");
    EXPECT_EQ(stream("好\n" + std::string(2'000'000, 'x')),
              "apiError(\"HTTP 500: 好" + std::string(199, 'x') + "\")")
        << "an endless line";
    answer.end = ScriptedAnswer::End::fail;
    EXPECT_EQ(stream("over\r\nload\0\xff"s), "apiError(\"HTTP 500: overload\uFFFD\")") << "no last line end";
    answer.end = ScriptedAnswer::End::complete;

    answer.status = 403;
    answer.pieces = {std::string(500, 'x')};
    EXPECT_EQ(translateFree(), "apiError(\"" + std::string(100, 'x') + "\")");
    answer.pieces = {"\xff\xfe"};
    EXPECT_EQ(translateFree(), "apiError(\"Unknown error\")");
    for (const char* nothing : {"{}", "[]", "\"text\"", R"({"text": ""})", R"({"text": 5})"}) {
        answer = {.pieces = {nothing}};
        EXPECT_EQ(translateFree(), "emptyResponse") << nothing;
    }
    for (const auto& unreadable : {"<html>"s, R"({"text": "hi", "score": 1e999})"s, "{\"text\": \"hi\"}\0{}"s,
                                   "{\"text\": \"h\0i\"}"s}) {
        answer = {.pieces = {unreadable}};
        EXPECT_THROW(finish(free.translate("hi", TargetLanguage::french)), nlohmann::json::exception)
            << unreadable;
    }
    answer = {.pieces = {R"({"text": "hi", "n": )" + std::string(40, '[') + std::string(40, ']') + "}"}};
    EXPECT_THROW(finish(free.translate("hi", TargetLanguage::french)), platform::HTTPError);
    answer = {.pieces = {R"({"text": "h\u0000i"})"}};
    EXPECT_EQ(translateFree(), "hi");
}

TEST_F(TranslationClients, RequestsHoldWhatTheServiceExpects) {
    stream(deltaLine("Quote"));
    answer = {.pieces = {R"({"text": "salut"})"}};
    EXPECT_EQ(translateFree(), "salut");
    ASSERT_EQ(host.network.requests.size(), 2U);
    const auto& streaming = host.network.requests[0];
    const auto& plain = host.network.requests[1];
    EXPECT_EQ(streaming.method + " " + streaming.url, "POST https://localhost:8443/v1/translate");
    EXPECT_EQ(streaming.timeout, 15s);
    auto body = nlohmann::json::parse(streaming.body);
    EXPECT_TRUE(body["system_prompt"].get<std::string>().ends_with("- 报价 → Quote / Quotation\n"));
    body.erase("system_prompt");
    EXPECT_EQ(
        body,
        nlohmann::json({{"text", "报价"}, {"target_language", "EN"}, {"style", "casual"}, {"stream", true}}));
    EXPECT_EQ(plain.method + " " + plain.url, "POST https://localhost:8443/v1/free");
    EXPECT_EQ(nlohmann::json::parse(plain.body),
              nlohmann::json({{"text", "hi"}, {"source_lang", "ZH"}, {"target_lang", "FR"}}));
    const std::vector<std::pair<std::string, std::string>> headers{{"Content-Type", "application/json"},
                                                                   {"X-Device-ID", DeviceID::current()}};
    EXPECT_EQ(streaming.headers, headers);
    EXPECT_EQ(plain.headers, headers);
}

TEST_F(TranslationClients, ShowTheUsersTokenToTheService) {
    std::filesystem::create_directories(folder / "Configuration");
    folder.write("Configuration/Info.json", R"({"LumarinServiceToken": "anna.5ec2e7\n"})");
    stream(deltaLine("Quote"));
    answer = {.pieces = {R"({"text": "salut"})"}};
    translateFree();
    ASSERT_EQ(host.network.requests.size(), 2U);
    for (const auto& request : host.network.requests)
        EXPECT_EQ(request.headers.back(),
                  (std::pair<std::string, std::string>{"Authorization", "Bearer anna.5ec2e7"}));
}

TEST_F(TranslationClients, DeviceIDIsKeptAsStoredAndMadeAnewWhenGone) {
    auto& defaults = host.userDefaults();
    auto created = DeviceID::current();
    EXPECT_EQ(created.size(), 36U);
    EXPECT_EQ(DeviceID::current(), created);
    defaults.remove("Lumarin.deviceID");
    EXPECT_NE(DeviceID::current(), created);
    defaults.set("Lumarin.deviceID", "any-thing");
    EXPECT_EQ(DeviceID::current(), "any-thing");
}

TEST(TranslationPrompt, IsPutTogetherFromItsPieces) {
    auto count = [](const std::string& text, const std::string& sought) {
        int found = 0;
        for (auto at = text.find(sought); at != std::string::npos; at = text.find(sought, at + 1))
            ++found;
        return found;
    };
    const auto ends = [](const std::string& prompt, const std::string& end) {
        EXPECT_TRUE(prompt.ends_with(end)) << prompt;
    };
    ends(buildSystemPrompt(StylePreset::direct, {}, TargetLanguage::japanese),
         "No markdown fences unless the input had them.\n\n");
    const auto chinese = buildSystemPrompt(StylePreset::formal, {}, TargetLanguage::chinese);
    ends(chinese, "Output: 今晚8点北京见");
    EXPECT_EQ(count(chinese, "Simplified Chinese"), 4);
    EXPECT_EQ(count(chinese, "https://example.com"), 2);
    ends(buildSystemPrompt(StylePreset::casual, {{"货期", "Lead Time"}, {"样品", "Sample"}},
                           TargetLanguage::english),
         "See you in Beijing at 8pm tonight.\n\n# Industry term glossary (use these translations when they "
         "appear)\n"
         "- 样品 → Sample\n- 货期 → Lead Time\n");
    const auto russian =
        buildSystemPrompt(StylePreset::friendly, {{"柜", "Container"}}, TargetLanguage::russian);
    EXPECT_EQ(count(russian, "had them.\n\n\n\n# Industry"), 1);
}
