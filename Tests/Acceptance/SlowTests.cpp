#include "Acceptance/AcceptanceTest.h"

#include <iostream>
#include <numeric>
#include <xcb/res.h>

namespace tests {
namespace {

// What the server keeps for all its clients.
std::uint64_t countOfResources(const platform::desktop::XConnection& x) {
    std::uint64_t count = 0;
    const auto clients = x.reply(xcb_res_query_clients_reply, xcb_res_query_clients(x));
    for (auto client = xcb_res_query_clients_clients_iterator(clients.get()); client.rem > 0;
         xcb_res_client_next(&client)) {
        const auto answer = x.reply(xcb_res_query_client_resources_reply,
                                    xcb_res_query_client_resources(x, client.data->resource_base));
        if (!answer)
            continue;
        for (auto type = xcb_res_query_client_resources_types_iterator(answer.get()); type.rem > 0;
             xcb_res_type_next(&type))
            count += type.data->count;
    }
    return count;
}

long residentKilobytes(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/status");
    for (std::string word; file >> word;)
        if (long value = 0; word == "VmRSS:" && file >> value)
            return value;
    return 0;
}

std::ptrdiff_t openFiles(pid_t process) {
    return std::distance(std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/fd"), {});
}

} // namespace

class AcceptanceSlowEditor : public testing::Test {
protected:
    // A gesture on a text of its own, of which a part is selected or nothing.
    void gesture(const TestEditor& editor, bool isPartial, std::chrono::milliseconds keyDelay = 0ms,
                 std::chrono::milliseconds pasteDelay = 0ms) {
        const auto part = "text " + std::to_string(++number);
        editor.setUp(isPartial ? "before [" + part + "] after" : part, keyDelay, pasteDelay);
        if (number / 2 % 2 == 0)
            desk.program.gesture(desk.person);
        else
            desk.program.quickGesture(desk.person);
        const auto translated = "T(" + part + ")";
        EXPECT_TRUE(editor.comesToHold(isPartial ? "before " + translated + " after" : translated))
            << editor.content() << ", busy " << keyDelay.count() << " ms, late " << pasteDelay.count()
            << " ms";
        expectUsersClipboard();
    }

    void expectUsersClipboard() { EXPECT_EQ(clipboardContent(probe), users); }

    AcceptanceDesk desk;
    SelectionClient owner{{.owned = {{{"UTF8_STRING", "UTF8_STRING", 8, "the user's"},
                                      {"image/png", "image/png", 8, "pixels"}}}}};
    SelectionProbe probe;
    const ClipboardContent users = clipboardContent(probe);
    int number = 0;
};

TEST_F(AcceptanceSlowEditor, NeverLosesItsSelectionNorGetsAnOldClipboard) {
    using Delays = std::vector<std::pair<std::chrono::milliseconds, std::chrono::milliseconds>>;
    const std::tuple<const char*, ClientScript, Delays> editors[] = {
        {"ordinary",
         {},
         {{0ms, 0ms}, {100ms, 0ms}, {500ms, 0ms}, {900ms, 0ms}, {0ms, 100ms}, {0ms, 500ms}, {0ms, 900ms}}},
        {"with a queue of its own", {.pongsBeforeKeys = true}, {{500ms, 0ms}}},
        {"without ping, owning the other selection",
         {.speaksPing = false, .ownsPrimary = true},
         {{500ms, 0ms}, {0ms, 500ms}}},
        {"without ping", {.speaksPing = false}, {{500ms, 0ms}}},
    };
    const SelectionClient manager({.fetchesEachChange = true});
    const int rounds = isFullRun() ? 13 : 1;
    for (int round = 0; round < rounds; ++round)
        for (const auto& [name, script, delays] : editors) {
            SCOPED_TRACE(name);
            const TestEditor editor(script);
            for (const auto& [keyDelay, pasteDelay] : delays)
                for (bool isPartial : {true, false})
                    gesture(editor, isPartial, keyDelay, pasteDelay);
        }
}

TEST_F(AcceptanceSlowEditor, IsTranslatedBesideAnEagerClipboardManager) {
    const SelectionClient manager({.fetchesEachChange = true, .fillsEmpty = "the user's"});
    const TestEditor editor;
    for (auto delay : {0ms, 500ms})
        for (bool isPartial : {true, false})
            gesture(editor, isPartial, delay, delay);
}

TEST_F(AcceptanceSlowEditor, CostsNothingWhenItIsNotSlow) {
    const TestEditor editor;
    auto shortest = Clock::duration::max();
    for (int round = 0; round < 5; ++round) {
        editor.setUp("whole field");
        const auto begin = Clock::now();
        desk.program.quickGesture(desk.person);
        shortest = std::min(shortest, Clock::now() - begin);
    }
    // Any wait that is not ended by what it waits for takes more than a second.
    EXPECT_LT(shortest, 1500ms);
}

// It wakes up when the gesture has been given up: nothing that it copies then stays on the clipboard.
TEST_F(AcceptanceSlowEditor, IsGivenUpAndItsLateCopyIsTakenBack) {
    const auto giveUp = [this](const TestEditor& editor, std::chrono::milliseconds keyDelay) {
        editor.setUp("kept [text]", keyDelay);
        const auto begin = Clock::now();
        desk.program.emptyGesture(desk.person);
        EXPECT_LT(Clock::now() - begin, 5s + AcceptanceProgram::errorTime);
    };
    giveUp(TestEditor(), 60s);
    expectUsersClipboard();
    const TestEditor editor;
    giveUp(editor, 1500ms);
    // The arrow is the last key of the gesture.
    EXPECT_TRUE(editor.comesToHold("kept text"));
    std::this_thread::sleep_for(100ms);
    expectUsersClipboard();
    // What the user copies from then on is the user's.
    editor.setUp("kept [own]");
    desk.person.strike({Key::leftControl, Key::c});
    EXPECT_TRUE(comesTrue([this] {
        const auto text = probe.fetch("UTF8_STRING");
        return text && text->bytes == "own";
    }));
}

TEST_F(AcceptanceSlowEditor, IsTranslatedTimeAndAgainWithNothingLeftBehind) {
    const TestEditor editor;
    const auto process = desk.program.process().pid();
    const platform::desktop::XConnection x;
    // What is made once is there after the first few.
    const int gestures = isFullRun() ? 1000 : 20;
    const int settled = 10;
    long memory = 0;
    std::ptrdiff_t files = 0;
    std::uint64_t resources = 0;
    for (int count = 0; count < gestures + settled; ++count) {
        if (count == settled) {
            memory = residentKilobytes(process);
            files = openFiles(process);
            resources = countOfResources(x);
        }
        gesture(editor, count % 3 == 0);
    }
    const auto memoryAfter = residentKilobytes(process);
    std::cout << gestures << " gestures: memory " << memory << " -> " << memoryAfter << " kB, files " << files
              << " -> " << openFiles(process) << ", X resources " << resources << " -> "
              << countOfResources(x) << '\n';
    EXPECT_LT(memoryAfter, memory + 4096);
    EXPECT_EQ(openFiles(process), files);
    EXPECT_EQ(countOfResources(x), resources);
}

} // namespace tests
