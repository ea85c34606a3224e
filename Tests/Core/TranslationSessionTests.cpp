#include "Core/TranslationStateMachine.h"
#include "Data/KeychainManager.h"
#include "Support/HeadlessTest.h"
#include "Support/Streams.h"

using namespace lumarin;
using namespace tests;
using platform::PasteboardItem;
using platform::headless::ScriptedAnswer;

namespace {

namespace key = platform::key;
using End = ScriptedAnswer::End;

// The real program on a machine in memory, yet to be started: a person types, holds Fn and looks at the
// field, the clipboard and the log.
class TranslationLaunch : public HeadlessTest {
protected:
    TranslationLaunch() {
        host.applications.frontmost = {7, "Editor"};
        host.field.setText("请报价");
        host.pasteboard.items = usersClipboard;
        host.network.respond = [this](const platform::HTTPRequest& request) {
            return request.method == "HEAD" ? ScriptedAnswer{} : answer;
        };
    }

    void press(platform::Duration held = 0ms) {
        EXPECT_TRUE(host.keys.pressFn());
        host.advance(held);
    }
    void release() {
        EXPECT_TRUE(host.keys.releaseFn());
        host.advance(0ms);
    }
    void escape() {
        host.keys.pressKey(key::escape);
        host.advance(0ms);
    }

    // The whole of a gesture that a person holds long enough.
    void translate() {
        press(2s);
        release();
        host.advance(2s);
    }

    // The log's messages since the last call, without the lines of the key listener.
    std::string log() {
        std::istringstream lines(bytesOf(dataFile("debug.log")));
        std::filesystem::remove(dataFile("debug.log"));
        std::string messages;
        for (std::string line; std::getline(lines, line);)
            if (auto message = line.substr(std::string("[2026-11-16T18:35:58Z] ").size());
                !message.starts_with("[Hotkey]"))
                messages += message + "\n";
        return messages;
    }

    void expectLogged(const std::string& part) { EXPECT_PRED_FORMAT2(testing::IsSubstring, part, log()); }

    // What the pill says, if there is one on the screen.
    std::optional<std::string> shown() const {
        if (host.windows.shown.empty())
            return std::nullopt;
        const auto pill = host.windows.shown.back()->presentation(host.clock.now());
        return pill.sublayers.at(0).sublayers.at(2).drawing.lines.at(0).text;
    }

    // The keys typed for the user, by their letters, `>` for Right Arrow.
    std::string typed() const {
        std::string letters;
        for (const auto& event : host.keys.posted) {
            bool isArrow = event.keyCode == key::rightArrow;
            EXPECT_EQ(event.flags, isArrow ? 0 : platform::flag::command);
            letters += isArrow ? '>' : event.keyCode == key::a ? 'A' : event.keyCode == key::c ? 'C' : 'V';
        }
        return letters;
    }

    // Everything is as before a gesture, but for the field's text.
    void expectAtRest(const std::string& text = "请报价") {
        EXPECT_EQ(host.field.text, text);
        EXPECT_EQ(host.pasteboard.items, usersClipboard);
        EXPECT_EQ(machine->state.value(), TranslationState::idle);
        EXPECT_FALSE(machine->isProcessing.value());
        EXPECT_EQ(host.network.openExchanges, 0);
    }

    const std::vector<PasteboardItem> usersClipboard{
        {{{"text/html", "<b>mine</b>"}, {"text/plain", "mine"}}},
        {{{"image/png", std::string("\x89PNG\0\1", 6)}}},
        {},
    };
    // Fragments arrive 100 ms apart; the translation is complete 500 ms after the read.
    ScriptedAnswer answer = streamed({"Please ", "quote", "."}, 100ms);
    std::shared_ptr<TranslationStateMachine> machine = std::make_shared<TranslationStateMachine>();
};

const std::string readWhole =
    "[SM] fnDown — source app: Editor\n[SM] Reading text...\n[SM] Read: \"请报价\" (3 chars)\n"
    "[SM] Translating (ai → english)...\n";
const std::string done = "[SM] Done: \"Please quote.\"\n";
const std::string injected = "[SM] Confirming — injecting into Editor\n[SM] Injected ✓\n";

class TranslationSession : public TranslationLaunch {
protected:
    TranslationSession() {
        machine->setup();
        host.advance(0ms);
        host.network.requests.clear();
        log();
    }
};

} // namespace

TEST_F(TranslationSession, ReplacesTheWholeFieldWhenReleasedAfterTheTranslation) {
    press();
    EXPECT_EQ(machine->state.value(), TranslationState::reading);
    EXPECT_FALSE(shown());
    host.advance(200ms);
    EXPECT_EQ(machine->state.value(), TranslationState::translating);
    EXPECT_EQ(shown(), "");
    host.advance(200ms);
    EXPECT_EQ(shown(), "Please ");
    host.advance(800ms);
    EXPECT_EQ(machine->state.value(), TranslationState::preview);
    EXPECT_EQ(shown(), "Please quote.");
    EXPECT_FALSE(machine->isProcessing.value());
    EXPECT_EQ(host.pasteboard.items, usersClipboard);
    release();
    host.advance(199ms);
    EXPECT_EQ(host.field.text, "请报价");
    host.advance(1ms);
    EXPECT_FALSE(shown());
    host.advance(1s);
    expectAtRest("Please quote.");
    EXPECT_EQ(typed(), "CAC>AV");
    EXPECT_EQ(host.applications.activated.size(), 1U);
    EXPECT_EQ(log(), readWhole + done + "[SM] fnUp — state=preview\n" + injected);
}

TEST_F(TranslationSession, InjectsByItselfWhenReleasedBefore) {
    const std::pair<platform::Duration, std::string> cases[] = {
        {0ms, "[SM] fnDown — source app: Editor\n[SM] fnUp — state=reading\n"},
        {100ms, "[SM] Reading text...\n[SM] fnUp — state=reading\n[SM] Read: "},
        {300ms,
         readWhole + "[SM] fnUp — state=translating\n[SM] Still translating, will inject when done\n" + done},
    };
    for (const auto& [held, logged] : cases) {
        host.field.setText("请报价");
        host.keys.pressFn();
        if (held > 0ms)
            host.advance(held);
        release();
        host.advance(3s);
        expectAtRest("Please quote.");
        auto messages = log();
        EXPECT_NE(messages.find(logged), std::string::npos) << messages;
        EXPECT_TRUE(messages.ends_with(done + injected)) << messages;
    }
}

TEST_F(TranslationSession, ReplacesOnlyTheSelection) {
    host.field.setText("你好，请报价。谢谢");
    host.field.select(std::string("你好，").size(), std::string("你好，请报价").size());
    translate();
    expectAtRest("你好，Please quote.。谢谢");
    EXPECT_EQ(typed(), "CV");
    EXPECT_EQ(host.field.selectionStart, std::string("你好，Please quote.").size());
}

TEST_F(TranslationSession, FreeModeAsksOnce) {
    machine->currentMode = TranslationMode::free;
    machine->currentLanguage = TargetLanguage::german;
    answer = {.pieces = {R"({"text": " Bitte )", R"(anbieten. ", "more": 1})"}};
    translate();
    expectAtRest(" Bitte anbieten. ");
    EXPECT_EQ(host.network.requests.size(), 1U);
    expectLogged("[SM] Translating (free → german)...\n[SM] Done: \" Bitte anbieten. \"\n");
}

TEST_F(TranslationSession, EscapeAbandonsAtEveryMomentOfTranslationAndPreview) {
    const std::tuple<platform::Duration, bool, std::string> cases[] = {
        {200ms, false, readWhole + "[SM] Cancel\n[SM] Cancelled\n"},
        {450ms, true,
         readWhole
             + "[SM] fnUp — state=translating\n[SM] Still translating, will inject when done\n"
               "[SM] Cancel\n[SM] Cancelled\n"},
        {2s, false, readWhole + done + "[SM] Cancel\n"},
    };
    for (const auto& [at, released, logged] : cases) {
        press(at);
        if (released)
            release();
        escape();
        expectAtRest();
        host.advance(3s);
        EXPECT_EQ(log(), logged);
        if (!released) {
            release();
            host.advance(3s);
            EXPECT_EQ(log(), "[SM] fnUp — state=idle\n");
        }
        expectAtRest();
    }
}

TEST_F(TranslationSession, EscapeIsTheApplicationsWhileReadingAndInjecting) {
    press(100ms);
    escape();
    host.advance(2s);
    EXPECT_EQ(machine->state.value(), TranslationState::preview);
    // The key and the release in one turn of the loop: the release comes first, so the text must arrive
    // whole.
    host.keys.releaseFn();
    host.keys.pressKey(key::escape);
    host.advance(10ms);
    escape();
    host.advance(2s);
    expectAtRest("Please quote.");
}

TEST_F(TranslationSession, ShowsAnErrorForTwoSecondsAndIgnoresThePressMeanwhile) {
    const std::tuple<std::string, ScriptedAnswer, std::string, std::string> cases[] = {
        {"", answer, "[SM] fnDown — source app: Editor\n[SM] Reading text...\n[SM] Error: emptyText\n",
         "reading"},
        {"请报价",
         {.status = 500, .pieces = {"no\nmodel"}},
         readWhole + "[SM] Error: apiError(\"HTTP 500: nomodel\")\n",
         "translating"},
        {"请报价", {.pieces = {"data: [DONE]\n"}}, readWhole + "[SM] Error: emptyResponse\n", "translating"},
        {"请报价",
         {.pieces = {deltaLine("Ple")}, .end = End::fail},
         readWhole + "[SM] Error: The connection was lost.\n",
         "translating"},
        {"请报价",
         {.status = std::nullopt},
         readWhole + "[SM] Error: networkError(\"Invalid response\")\n",
         "translating"},
    };
    for (const auto& [field, scripted, logged, state] : cases) {
        answer = scripted;
        host.field.setText(field);
        press(700ms);
        release();
        press();
        EXPECT_TRUE(machine->isProcessing.value());
        EXPECT_FALSE(shown().value_or("").empty()) << "the person is told";
        auto messages = log();
        EXPECT_TRUE(messages.starts_with(logged)) << messages;
        EXPECT_TRUE(messages.ends_with("[SM] fnDown ignored, state=" + state + "\n")) << messages;
        release();
        host.advance(3s);
        host.field.setText("请报价");
        expectAtRest();
        log();
    }
    // Escape need not wait for the end of that.
    press(1s);
    escape();
    expectAtRest();
    EXPECT_EQ(log(), readWhole + "[SM] Error: networkError(\"Invalid response\")\n[SM] Cancel\n");
}

TEST_F(TranslationSession, PastesTextAndNothingElseOfWhatTheServiceSends) {
    const std::pair<std::string, std::string> cases[] = {
        {"\x1b[201~rm -r ~\r\n\x1b]0;t\a\x7f", "[201~rm -r ~\r\n]0;t"},
        {"1\t2\n3\r4\v5\f6\xC2\x85" + std::string("7\0", 2), "1\t2\n3\r4\n5\n6\n7"},
        {"a\xC2\x9B"
         "b\xC2\x80"
         "c",
         "abc"},
        {"pay \u202e05\u202c of \u202d50", "pay 05\u202c of 50"},
        {"\u2067رقم \u2066+86 (0)\u2069\u2069 \u202aA\u202c \u200eB\u200f \u061c",
         "\u2067رقم \u2066+86 (0)\u2069\u2069 \u202aA\u202c \u200eB\u200f \u061c"},
        {"👨‍👩‍👧 \uFFFD\u2028🏴󠁧󠁢󠁥󠁮󠁧󠁿 क्ष",
         "👨‍👩‍👧 \uFFFD\u2028🏴󠁧󠁢󠁥󠁮󠁧󠁿 क्ष"},
    };
    for (const auto& [sent, pasted] : cases)
        for (const auto mode : {TranslationMode::ai, TranslationMode::free}) {
            machine->currentMode = mode;
            answer = mode == TranslationMode::ai
                         ? streamed({sent + "."})
                         : ScriptedAnswer{.pieces = {nlohmann::json({{"text", sent + "."}}).dump()}};
            host.field.setText("请报价");
            press(1s);
            EXPECT_EQ(shown(), pasted + ".");
            release();
            host.advance(1s);
            expectAtRest(pasted + ".");
        }
}

TEST_F(TranslationSession, PastesNothingOfATranslationThatNeverEnds) {
    const std::string much(100'000, 'x');
    for (const auto mode : {TranslationMode::ai, TranslationMode::free}) {
        machine->currentMode = mode;
        answer = mode == TranslationMode::ai ? streamed(std::vector<std::string>(11, much))
                                             : ScriptedAnswer{.pieces = {"{\"text\": \""}};
        if (mode == TranslationMode::free)
            answer.pieces.insert(answer.pieces.end(), 70, much);
        answer.end = End::stall;
        press(700ms);
        EXPECT_EQ(shown(), "The server’s response is too long.");
        EXPECT_EQ(host.network.openExchanges, 0);
        release();
        host.advance(3s);
        expectAtRest();
        expectLogged("[SM] Error: The server’s response is too long.\n");
    }
    answer = {.pieces = {"{\"text\": \"" + std::string((1U << 20U) + 1, 'x') + "\"}"}};
    translate();
    host.advance(1s);
    expectAtRest();
}

TEST_F(TranslationSession, ReadsAFieldThatCopiesLateAndGivesUpOnOneThatNeverDoes) {
    host.field.ignoredCopies = 1;
    translate();
    expectAtRest("Please quote.");
    EXPECT_EQ(typed(), "CACC>AV");

    host.keys.posted.clear();
    host.field.setText("请报价");
    host.field.ignoredCopies = 100;
    translate();
    host.advance(3s);
    expectAtRest();
    EXPECT_EQ(typed(), "CACCC>");
    EXPECT_EQ(host.field.selectedText(), "");
}

TEST_F(TranslationSession, InjectsOnceWhateverIsPressedMeanwhile) {
    press(2s);
    release();
    host.advance(100ms);
    press();
    release();
    host.advance(2s);
    expectAtRest("Please quote.");
    EXPECT_EQ(typed(), "CAC>AV");
    EXPECT_EQ(log(),
              readWhole + done + "[SM] fnUp — state=preview\n[SM] Confirming — injecting into Editor\n"
                  + "[SM] fnDown ignored, state=preview\n[SM] fnUp — state=preview\n[SM] Injected ✓\n");
}

TEST_F(TranslationSession, WhatIsLeftOfACancelledSessionDoesNotTouchTheNext) {
    answer = {.end = End::stall};
    press(500ms);
    release();
    // Abandoned and begun again in one turn of the loop, with the old release still waiting and the old task
    // yet to unwind.
    host.keys.pressKey(key::escape);
    host.keys.pressFn();
    answer = streamed({"Please quote."});
    host.advance(2s);
    EXPECT_EQ(machine->state.value(), TranslationState::preview);
    EXPECT_EQ(host.field.text, "请报价");
    release();
    host.advance(2s);
    expectAtRest("Please quote.");
}

TEST_F(TranslationSession, WorksWithoutAFrontApplication) {
    host.applications.frontmost.reset();
    translate();
    expectAtRest("Please quote.");
    EXPECT_TRUE(host.applications.activated.empty());
    const auto messages = log();
    EXPECT_TRUE(messages.starts_with("[SM] fnDown — source app: nil\n")) << messages;
    EXPECT_TRUE(messages.ends_with("[SM] Confirming — injecting into ?\n[SM] Injected ✓\n")) << messages;
}

TEST_F(TranslationSession, LogsTheFirstFiftyCharactersAsAReaderCountsThem) {
    const std::string family = "👨‍👩‍👧";
    host.field.setText(family + std::string(119, 'x'));
    press(2s);
    expectLogged("[SM] Read: \"" + family + std::string(49, 'x') + "\" (120 chars)\n");
    escape();
}

TEST_F(TranslationSession, FnListenerReportsStrictlyInTurns) {
    EXPECT_FALSE(host.keys.releaseFn()) << "a release without a press is not ours";
    EXPECT_TRUE(host.keys.pressFn());
    EXPECT_FALSE(host.keys.pressFn()) << "a repeated press passes";
    EXPECT_FALSE(host.keys.changeFlags(56, platform::flag::secondaryFn)) << "Shift passes";
    host.keys.disableTap();
    EXPECT_TRUE(host.keys.releaseFn()) << "the tap was enabled again";
    EXPECT_FALSE(host.keys.releaseFn());
}

TEST_F(TranslationLaunch, StartsWithoutPermissionAndSaysSo) {
    host.keys.isPermitted = false;
    testing::internal::CaptureStdout();
    machine->setup();
    host.advance(1s);
    const std::string messages = "[SM] setup()\n[Hotkey] Starting CGEvent Tap (HID level)...\n"
                                 "[Hotkey] Failed to create event tap — check Accessibility permissions\n"
                                 "[LLM] Connection pre-warmed\n";
    EXPECT_EQ(testing::internal::GetCapturedStdout(), messages);
    EXPECT_TRUE(bytesOf(dataFile("debug.log")).starts_with("[2026-11-16T18:35:58Z] [SM] setup()\n"));
    EXPECT_FALSE(host.keys.pressFn());
}

TEST_F(TranslationLaunch, WarmsUpOnlyInAIMode) {
    KeychainManager::saveMode(TranslationMode::free);
    machine->setup();
    machine->currentMode = TranslationMode::ai;
    host.advance(1s);
    EXPECT_TRUE(host.network.requests.empty());
    KeychainManager::saveMode(TranslationMode::ai);
    std::make_shared<TranslationStateMachine>()->setup();
    host.advance(1s);
    ASSERT_EQ(host.network.requests.size(), 1U);
    EXPECT_EQ(host.network.requests[0].method, "HEAD");
    EXPECT_EQ(host.network.requests[0].url, "https://localhost:8443/v1/translate");
}

TEST_F(TranslationSession, PublishesEachStateBeforeItReadsBack) {
    std::vector<TranslationState> announced;
    auto subscription = machine->state.subscribe([&](TranslationState next) {
        if (!announced.empty()) {
            EXPECT_EQ(machine->state.value(), announced.back());
        }
        announced.push_back(next);
    });
    translate();
    using enum TranslationState;
    EXPECT_EQ(announced, (std::vector{idle, reading, translating, preview, idle}));
}

TEST_F(TranslationLaunch, AbandonedReadPutsTheClipboardBack) {
    TextManager manager;
    auto read = [](TextManager& texts) -> platform::Task<void> { co_await texts.readCurrentText(); };
    for (auto moment : {20ms, 70ms, 120ms, 160ms}) {
        host.field.setText("请报价");
        auto task = spawn(host.clock, read(manager));
        host.advance(moment);
        EXPECT_NE(host.pasteboard.items, usersClipboard);
        task.cancel();
        host.advance(0ms);
        EXPECT_EQ(host.pasteboard.items, usersClipboard);
    }
}
