#include "Platform/Desktop/X11/Clipboard/Patience.h"

#include <gtest/gtest.h>

namespace tests {
namespace {

using namespace std::chrono_literals;
using platform::desktop::Patience;
using platform::desktop::PostedKey;

PostedKey key(std::uint64_t number, std::uint32_t window, std::chrono::steady_clock::time_point time = {}) {
    return {number, platform::desktop::ClipboardEffect::copy, window, time};
}

TEST(Patience, GivesABusyWindowTimeForEachKeyAndASilentOneLess) {
    constexpr std::uint32_t busy = 1;
    constexpr std::uint32_t silent = 2;
    Patience patience;
    EXPECT_EQ(patience.with(key(1, busy)), 1250ms);
    patience.answered();
    EXPECT_EQ(patience.with(key(3, busy)), 2500ms) << "two more keys, one of them not waited for";
    EXPECT_EQ(patience.with(key(90, busy)), 3750ms) << "three at most";

    EXPECT_EQ(patience.with(key(91, silent)), 1250ms) << "the keys before went elsewhere";
    patience.keptSilent();
    EXPECT_EQ(patience.with(key(93, silent)), 1250ms);
    patience.keptSilent();
    EXPECT_EQ(patience.with(key(94, silent)), 100ms);

    const auto now = std::chrono::steady_clock::now();
    patience.gestureBegins(key(97, silent, now - 100ms), now);
    EXPECT_EQ(patience.with(key(98, silent)), 3750ms) << "keys of just now are still to be worked off";
    patience.gestureBegins(key(101, silent, now - 2s), now);
    EXPECT_EQ(patience.with(key(102, silent)), 1250ms) << "those of long ago are not";
}

} // namespace
} // namespace tests
