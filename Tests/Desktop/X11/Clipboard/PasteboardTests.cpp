#include "Desktop/X11/Clipboard/SelectionClient.h"
#include "Desktop/X11/Clipboard/SelectionProbe.h"
#include "Desktop/XServer.h"
#include "Platform/Desktop/X11/Clipboard/DesktopPasteboard.h"
#include "Platform/Foundation/Sleep.h"
#include "Platform/Foundation/ThreadRunLoop.h"
#include "Platform/Input/PasteboardError.h"
#include "Support/RunToEnd.h"

#include <algorithm>
#include <atomic>
#include <thread>

#include <gtest/gtest.h>

namespace tests {
namespace {

using platform::PasteboardItem;
using platform::desktop::SelectionForm;

std::string bytesOfLength(std::size_t length) {
    std::string bytes(length, '\0');
    for (std::size_t at = 0; at < length; ++at)
        bytes[at] = static_cast<char>(at * 2654435761U >> 13U);
    return bytes;
}

// The pasteboard of an X server of the test's own.
class PasteboardTest : public testing::Test {
protected:
    // Other programs come before the pasteboard is used.
    platform::Pasteboard& pasteboard() {
        if (!pasteboard_)
            pasteboard_.emplace(keys, [](std::string_view) {});
        return *pasteboard_;
    }
    void endPasteboard() { pasteboard_.reset(); }

    template <typename T>
    T run(platform::Task<T> task) {
        return runToEnd(worker.runLoop(), std::move(task));
    }

    XServer server;
    SelectionProbe probe;

private:
    platform::desktop::PostedKeys keys;
    platform::WorkerThread worker;
    std::optional<platform::desktop::DesktopPasteboard> pasteboard_;
};

struct Contents {
    const char* name;
    std::vector<SelectionForm> forms;
    std::size_t pieceSize = 0;
};

class PasteboardContents : public PasteboardTest, public testing::WithParamInterface<Contents> {};

TEST_P(PasteboardContents, ComeBackByteForByteAndTypeForType) {
    const auto& [name, forms, pieceSize] = GetParam();
    const SelectionClient owner({.owned = forms, .pieceSize = pieceSize});
    const auto before = probe.targets();

    auto saved = run(pasteboard().pasteboardItems());
    run(pasteboard().clearContents());
    EXPECT_FALSE(probe.fetch(forms.front().target));
    run(pasteboard().setString("passing"));
    EXPECT_EQ(run(pasteboard().string()), "passing");
    run(pasteboard().clearContents());
    run(pasteboard().writeObjects(saved));
    EXPECT_EQ(run(pasteboard().pasteboardItems()), saved);

    auto after = probe.targets();
    for (const auto& target : before)
        EXPECT_EQ(std::ranges::count(after, target), 1) << target;
    EXPECT_EQ(after.size(), forms.size() + 4)
        << "TARGETS, MULTIPLE, TIMESTAMP, SAVE_TARGETS and what was there";
    for (const auto& form : forms) {
        auto found = probe.fetch(form.target);
        ASSERT_TRUE(found) << form.target;
        EXPECT_EQ(found->type, form.type);
        EXPECT_EQ(found->format, form.format);
        EXPECT_TRUE(found->bytes == form.bytes) << form.target;
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, PasteboardContents,
    testing::Values(Contents{"ManyKinds",
                             {{"UTF8_STRING", "UTF8_STRING", 8, "grüße, 世界"},
                              {"STRING", "STRING", 8, "gr\xFC\xDF"},
                              {"TEXT", "STRING", 8, "text"},
                              {"text/plain", "text/plain", 8, ""},
                              {"text/html", "text/html", 8, std::string("\xFF\xFE<\0b\0>\0", 8)},
                              {"text/uri-list", "text/uri-list", 8, "file:///a%20b\r\nfile:///c\r\n"},
                              {"application/x-private", "INTEGER", 32, bytesOfLength(400)},
                              {"application/x-wide", "CARDINAL", 16, bytesOfLength(66)},
                              {"x-kinds", "ATOM", 32, std::string("\x01\0\0\0\x04\0\0\0", 8)}}},
                    Contents{"BigImage",
                             {{"image/png", "image/png", 8, bytesOfLength(20'000'003)},
                              {"image/bmp", "image/bmp", 8, bytesOfLength(3'000'000)}},
                             250'000},
                    Contents{"BigImageInOneGo", {{"image/png", "image/png", 8, bytesOfLength(15'000'000)}}}),
    [](const auto& test) { return test.param.name; });

// A program may call its forms as the pasteboard itself calls those of another type.
TEST_F(PasteboardTest, HandsOutAFormWithAStrangeName) {
    const PasteboardItem strange{{{"X\tSTRING\t0", "bytes"}}};
    run(pasteboard().writeObjects({strange}));
    EXPECT_EQ(probe.fetch(strange.representations.front().first)->bytes, "bytes");
}

TEST_F(PasteboardTest, PastesNothingWhileAnotherProgramInsistsOnTheClipboard) {
    std::atomic<bool> isOver = false;
    std::jthread insistent([&] {
        const platform::desktop::XConnection x;
        const auto window = x.makeHiddenWindow();
        while (!isOver) {
            xcb_set_selection_owner(x, window, x.atom("CLIPBOARD"), XCB_CURRENT_TIME);
            static_cast<void>(x.reply(xcb_get_input_focus_reply, xcb_get_input_focus(x)));
        }
    });
    EXPECT_TRUE(comesTrue([&] { return probe.owner() != 0; }));
    // It may not get the processor for a moment.
    EXPECT_TRUE(comesTrue([&] {
        try {
            run(pasteboard().clearContents());
            run(pasteboard().setString("never"));
        } catch (const platform::PasteboardError&) {
            return true;
        }
        return false;
    }));
    isOver = true;
    insistent.join();

    // It takes the clipboard once.
    run(pasteboard().setString("first"));
    const SelectionClient late({.owned = {{{"UTF8_STRING", "UTF8_STRING", 8, "another's"}}}});
    EXPECT_TRUE(comesTrue([&] {
        const auto found = probe.fetch("UTF8_STRING");
        return found && found->bytes == "first";
    }));
}

TEST_F(PasteboardTest, ReadsTextWhateverItsOwnerCallsIt) {
    const std::pair<SelectionForm, std::optional<std::string>> cases[] = {
        {{"UTF8_STRING", "UTF8_STRING", 8, "a\xFFz"}, "a\xEF\xBF\xBDz"},
        {{"text/plain;charset=utf-8", "text/plain;charset=utf-8", 8, "世界"}, "世界"},
        {{"STRING", "STRING", 8, "gr\xFC\xDF"}, "grüß"},
        {{"UTF8_STRING", "UTF8_STRING", 8, ""}, ""},
        {{"image/png", "image/png", 8, "x"}, std::nullopt},
    };
    for (const auto& [form, text] : cases) {
        const SelectionClient owner({.owned = {{form}}});
        EXPECT_EQ(run(pasteboard().string()), text) << form.target;
    }
}

TEST_F(PasteboardTest, OffersTextToEveryKindOfProgram) {
    run(pasteboard().setString("grüß\xFF"));
    for (const char* target : {"UTF8_STRING", "text/plain;charset=utf-8", "text/plain", "TEXT"})
        EXPECT_EQ(probe.fetch(target)->bytes, "grüß\xEF\xBF\xBD") << target;
    EXPECT_FALSE(probe.fetch("STRING"));
    run(pasteboard().setString("grüß"));
    EXPECT_EQ(probe.fetch("STRING")->bytes, "gr\xFC\xDF");
    EXPECT_EQ(probe.fetch("TIMESTAMP")->type, "INTEGER");
    EXPECT_FALSE(probe.fetch("image/png"));
}

TEST_F(PasteboardTest, LeavesAnEmptyClipboardToNobody) {
    ASSERT_EQ(probe.owner(), 0U);
    EXPECT_TRUE(run(pasteboard().pasteboardItems()).empty());
    run(pasteboard().setString("passing"));
    EXPECT_NE(probe.owner(), 0U);
    run(pasteboard().clearContents());
    EXPECT_FALSE(probe.fetch("UTF8_STRING"));
    EXPECT_TRUE(comesTrue([this] { return probe.owner() == 0; }));
}

// Each of these once stood for a program that hung for good.
TEST_F(PasteboardTest, EndsItsWaitForOwnersThatStop) {
    const SelectionForm small{"image/png", "image/png", 8, "pixels"};
    const SelectionForm big{"image/png", "image/png", 8, bytesOfLength(50'000)};
    const SelectionForm caption{"text/html", "text/html", 8, "caption"};
    const SelectionForm bitmap{"image/bmp", "image/bmp", 8, "pixels"};
    struct Case {
        ClientScript script;
        // None: it must not be cleared, since nothing of it can be put back.
        std::optional<std::size_t> items;
    };
    const Case cases[] = {
        {{.owned = {{small}}, .neverAnswers = true}, std::nullopt},
        {{.owned = {{small}}, .diesWhenAskedForData = true}, 0},
        {{.owned = {{big}}, .pieceSize = 1000, .stopsAfterPieces = 3}, std::nullopt},
        {{.owned = {{caption, big}}, .pieceSize = 1000, .stopsAfterPieces = 3}, std::nullopt},
        {{.owned = {{caption, big, bitmap}}, .pieceSize = 1000, .stopsAfterPieces = 3}, 1},
        {{.owned = {{small}}, .answerDelay = ClientScript::Milliseconds(900)}, 1},
    };
    for (std::size_t at = 0; at < std::size(cases); ++at) {
        endPasteboard();
        SelectionClient owner(cases[at].script);
        const auto begin = Clock::now();
        if (cases[at].items)
            EXPECT_EQ(run(pasteboard().pasteboardItems()).size(), cases[at].items) << at;
        else
            EXPECT_THROW(run(pasteboard().pasteboardItems()), platform::PasteboardError) << at;
        EXPECT_EQ(run(pasteboard().string()), std::nullopt) << at;
        EXPECT_LT(Clock::now() - begin, 6s) << at;
        run(pasteboard().setString("still there"));
        EXPECT_EQ(probe.fetch("UTF8_STRING")->bytes, "still there") << at;
    }
}

TEST_F(PasteboardTest, ServesSlowAndVanishedProgramsBesideOthers) {
    const PasteboardItem image{{{"image/png", bytesOfLength(1'000'000)}, {"UTF8_STRING", "caption"}}};
    run(pasteboard().writeObjects({image}));
    probe.fetchAndVanish("image/png");
    auto slow = std::async(std::launch::async, [] {
        SelectionProbe other;
        return other.fetch("image/png", 50ms);
    });
    EXPECT_EQ(probe.fetch("UTF8_STRING")->bytes, "caption");
    EXPECT_TRUE(probe.fetch("image/png")->bytes == image.representations.front().second);
    // What is under way comes to its end, whatever the clipboard holds by then.
    std::this_thread::sleep_for(100ms);
    run(pasteboard().setString("later"));
    EXPECT_TRUE(slow.get()->bytes == image.representations.front().second);
}

platform::Task<void> passThrough(platform::Pasteboard& board, PasteboardItem item, std::promise<void> done) {
    co_await platform::sleepUnlessCancelled(10s);
    co_await board.setString("passing");
    co_await board.clearContents();
    std::vector<PasteboardItem> items{std::move(item)};
    co_await board.writeObjects(std::move(items));
    done.set_value();
}

TEST_F(PasteboardTest, FinishesWhatACancelledTaskHasBegun) {
    std::promise<void> over;
    auto isOver = over.get_future();
    platform::WorkerThread thread;
    auto handle = spawn(thread.runLoop(),
                        passThrough(pasteboard(), {{{"UTF8_STRING", "the user's"}}}, std::move(over)));
    handle.cancel();
    ASSERT_EQ(isOver.wait_for(5s), std::future_status::ready);
    EXPECT_EQ(probe.fetch("UTF8_STRING")->bytes, "the user's");
}

TEST_F(PasteboardTest, PutsBackAtItsEndWhatItHasBorrowed) {
    const SelectionClient manager({.isManager = true});
    const SelectionClient owner({.owned = {{{"UTF8_STRING", "UTF8_STRING", 8, "the user's"}}}});
    run(pasteboard().pasteboardItems());
    run(pasteboard().setString("in passing"));
    endPasteboard();
    EXPECT_EQ(probe.fetch("UTF8_STRING")->bytes, "the user's");
}

TEST_F(PasteboardTest, EndsWithNothingWhenTheServerDies) {
    const SelectionClient owner(
        {.owned = {{{"UTF8_STRING", "UTF8_STRING", 8, "text"}}}, .neverAnswers = true});
    auto items = std::async(std::launch::async, [this] { return run(pasteboard().pasteboardItems()); });
    std::this_thread::sleep_for(100ms);
    server.end();
    ASSERT_EQ(items.wait_for(800ms), std::future_status::ready) << "before the owner's time is up";
    EXPECT_TRUE(items.get().empty());
    run(pasteboard().setString("nobody hears"));
    EXPECT_EQ(run(pasteboard().string()), std::nullopt);
}

} // namespace
} // namespace tests
