#include "Desktop/PasteboardTest.h"

#include <map>

namespace tests {
namespace {

using platform::PasteboardItem;
using platform::Task;

constexpr auto keyPause = 50ms;
const std::vector<PasteboardItem> usersClipboard{{{{"UTF8_STRING", "the user's"}, {"image/png", "pixels"}}}};

// The gesture as the program makes it: reads the field, or its selection, and pastes over it.
class PasteboardRaces : public PasteboardTest {
protected:
    Task<std::string> read(xcb_window_t window) {
        auto& board = pasteboard();
        auto saved = co_await board.pasteboardItems();
        co_await board.clearContents();
        press(window, 'c');
        co_await platform::sleep(keyPause);
        auto text = co_await board.string();
        wasSelection = text && !text->empty();
        if (!wasSelection) {
            press(window, 'a');
            co_await platform::sleep(keyPause);
            for (int attempt = 0; attempt < 3; ++attempt) {
                co_await board.clearContents();
                press(window, 'c');
                co_await platform::sleep(keyPause);
                text = co_await board.string();
                if (text && !text->empty())
                    break;
                co_await platform::sleep(100ms);
            }
            press(window, '>');
            co_await platform::sleep(keyPause);
        }
        co_await restore(std::move(saved));
        co_return text.value_or("");
    }

    Task<void> write(xcb_window_t window, std::string text) {
        auto& board = pasteboard();
        auto saved = co_await board.pasteboardItems();
        if (!wasSelection) {
            press(window, 'a');
            co_await platform::sleep(keyPause);
        }
        co_await board.clearContents();
        co_await board.setString(std::move(text));
        press(window, 'v');
        co_await platform::sleep(keyPause);
        co_await restore(std::move(saved));
    }

    Task<void> restore(std::vector<PasteboardItem> saved) {
        co_await pasteboard().clearContents();
        if (!saved.empty())
            co_await pasteboard().writeObjects(std::move(saved));
    }

    // A gesture in a field, the selection in brackets, and all that has to be true of it in the end.
    void gesture(xcb_window_t window, const std::string& before, const std::string& after,
                 Clock::duration pauseBetween = 0ms) {
        const auto open = before.find('[');
        const auto wanted =
            open == std::string::npos ? before : before.substr(open + 1, before.size() - open - 2);
        probe->setField(window, before);
        EXPECT_EQ(run(read(window)), wanted);
        std::this_thread::sleep_for(pauseBetween);
        run(write(window, "new"));
        EXPECT_TRUE(comesTrue([&] { return probe->field(window) == after; }, 5s))
            << before << " became " << probe->field(window);
        expectUsersClipboard();
    }

    void expectUsersClipboard() {
        EXPECT_EQ(run(pasteboard().pasteboardItems()), usersClipboard);
        auto found = probe->fetch("UTF8_STRING");
        EXPECT_EQ(found ? found->bytes : "nothing", "the user's");
    }

    bool wasSelection = false;
};

struct Slowness {
    std::uint32_t beforeKey;
    std::uint32_t beforePaste;
};

TEST_F(PasteboardRaces, AreWonAgainstApplicationsOfEverySlowness) {
    struct Application {
        const char* name;
        ClientScript script;
        std::vector<Slowness> slownesses;
    };
    const Application applications[] = {
        {"ordinary", {.field = ""}, {{0, 0}, {100, 0}, {900, 0}, {0, 900}}},
        {"with a queue of its own", {.field = "", .pongsBeforeKeys = true}, {{500, 0}}},
        {"without ping, owning the other selection",
         {.field = "", .speaksPing = false, .ownsPrimary = true},
         {{500, 0}, {0, 500}}},
        {"without ping", {.field = "", .speaksPing = false}, {{500, 0}}},
    };
    client({.fetchesEachChange = true});
    for (const auto& application : applications)
        client(application.script);
    run(pasteboard().writeObjects(usersClipboard));
    auto next = clients.begin();
    for (const auto& application : applications) {
        const auto window = (++next)->window();
        for (auto [beforeKey, beforePaste] : application.slownesses) {
            SCOPED_TRACE(std::string(application.name) + ", " + std::to_string(beforeKey) + ", "
                         + std::to_string(beforePaste));
            probe->setBusy(window, beforeKey, beforePaste);
            gesture(window, "kept [text]", "kept new");
            gesture(window, "whole field", "new");
        }
    }
}

TEST_F(PasteboardRaces, CostAnApplicationThatAnswersAtOnceNothing) {
    const auto window = client({.field = ""}).window();
    run(pasteboard().writeObjects(usersClipboard));
    for (int round = 0; round < 5; ++round) {
        const auto begin = Clock::now();
        gesture(window, "whole field", "new");
        // Any wait that is not ended by what it waits for takes more than a second.
        EXPECT_LT(Clock::now() - begin, 6 * keyPause + 1s);
    }
}

TEST_F(PasteboardRaces, CostAnApplicationThatNeverAnswersABoundedTime) {
    const auto window = client({.field = ""}).window();
    run(pasteboard().writeObjects(usersClipboard));
    probe->setBusy(window, 60'000, 0);
    const auto begin = Clock::now();
    EXPECT_EQ(run(read(window)), "");
    EXPECT_LT(Clock::now() - begin, 5s);
    expectUsersClipboard();
}

// The application wakes up when the gesture has been given up: nothing that it copies then stays on the
// clipboard.
TEST_F(PasteboardRaces, GiveTheUsersClipboardBackAfterACopyThatCameTooLate) {
    const auto window = client({.field = ""}).window();
    run(pasteboard().writeObjects(usersClipboard));
    probe->setField(window, "kept [text]");
    probe->setBusy(window, 1500, 0);
    EXPECT_NE(run(read(window)), "text") << "the part of the field for its whole";
    probe->setBusy(window, 0, 0);
    // The arrow is the last key of the gesture.
    EXPECT_TRUE(comesTrue([&] { return probe->field(window) == "kept text"; }, 15s));
    std::this_thread::sleep_for(100ms);
    expectUsersClipboard();
    // What the user copies from then on is the user's.
    probe->setField(window, "kept [own]");
    probe->type(window, 'c');
    EXPECT_TRUE(comesTrue([&] { return run(pasteboard().string()) == "own"; }));
}

TEST_F(PasteboardRaces, AreNotDecidedByClipboardManagers) {
    client({.fetchesEachChange = true, .fillsEmpty = "the user's"});
    const auto window = client({.field = ""}).window();
    run(pasteboard().writeObjects(usersClipboard));
    for (std::uint32_t slowness : {0U, 500U}) {
        probe->setBusy(window, slowness, slowness);
        gesture(window, "whole field", "new");
        gesture(window, "kept [text]", "kept new");
    }
}

} // namespace
} // namespace tests
