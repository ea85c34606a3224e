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
    void gesture(int number, bool isPartial, std::chrono::milliseconds keyDelay = 0ms,
                 std::chrono::milliseconds fetchDelay = 0ms) {
        const auto part = "text " + std::to_string(number);
        const auto text = isPartial ? "before " + part + " after" : part;
        const auto from = isPartial ? std::size_t{7} : text.size();
        editor.setUp(text, from, isPartial ? from + part.size() : from, keyDelay, fetchDelay);
        if (number % 2 == 0)
            desk.program.gesture(desk.person);
        else
            desk.program.quickGesture(desk.person);
        const auto expected = isPartial ? "before T(" + part + ") after" : "T(" + part + ")";
        EXPECT_EQ(editor.content().text, expected)
            << "busy " << keyDelay.count() << " ms, late " << fetchDelay.count() << " ms";
    }

    AcceptanceDesk desk;
    SlowEditorClient editor{desk.display};
    SelectionProbe probe;
};

TEST_F(AcceptanceSlowEditor, NeverLosesItsSelectionNorGetsAnOldClipboard) {
    SelectionClient owner({.owned = platform::desktop::SelectionContent::of("the user's").forms});
    const int rounds = isFullRun() ? 13 : 1;
    int number = 0;
    for (int round = 0; round < rounds; ++round)
        for (auto delay : {0ms, 100ms, 500ms, 900ms})
            for (bool isPartial : {true, false}) {
                gesture(number, isPartial, delay, 0ms);
                gesture(number + 1, isPartial, 0ms, delay);
                ++number;
            }
    const auto text = probe.fetch("UTF8_STRING");
    EXPECT_EQ(text ? text->bytes : "", "the user's");
}

TEST_F(AcceptanceSlowEditor, IsTranslatedTimeAndAgainWithNothingLeftBehind) {
    SelectionClient owner({.owned = platform::desktop::SelectionContent::of("the user's").forms});
    const auto process = desk.program.process().pid();
    const platform::desktop::XConnection x;
    // What is made once is there after the first few.
    const int gestures = isFullRun() ? 1000 : 20;
    const int settled = 10;
    long memory = 0;
    std::ptrdiff_t files = 0;
    std::uint64_t resources = 0;
    for (int number = 0; number < gestures + settled; ++number) {
        if (number == settled) {
            memory = residentKilobytes(process);
            files = openFiles(process);
            resources = countOfResources(x);
        }
        gesture(number, number % 3 == 0);
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
