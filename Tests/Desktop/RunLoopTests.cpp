#include "Platform/Desktop/QtRunLoop.h"

#include "Desktop/QtProgram.h"

#include <thread>

#include <QCoreApplication>
#include <QEventLoop>
#include <gtest/gtest.h>

namespace platform::desktop {
namespace {

using namespace std::chrono_literals;

class QtRunLoopTest : public testing::Test {
protected:
    void runUntilEnd() { QCoreApplication::exec(); }
    void add(const std::string& name) { order += name; }

    tests::QtProgram<QCoreApplication> program;
    QtRunLoop loop;
    std::string order;
};

TEST_F(QtRunLoopTest, RunsWorkInTheOrderItFallsDueWhoeverPostsIt) {
    auto main = std::this_thread::get_id();
    auto start = loop.now();
    loop.postAfter(60ms, [] { QCoreApplication::quit(); });
    loop.postAfter(40ms, [&] { add("d"); });
    loop.post([&] {
        add("a");
        loop.post([&] { add("c"); });
    });
    loop.post([&] { add("b"); });
    std::jthread other(
        [&] { loop.postAfter(50ms, [&] { add(std::this_thread::get_id() == main ? "e" : "?"); }); });
    runUntilEnd();
    EXPECT_EQ(order, "abcde");
    EXPECT_GE(loop.now() - start, 60ms);
}

TEST_F(QtRunLoopTest, GoesOnInAnEventLoopThatItsWorkRuns) {
    loop.post([&] {
        QEventLoop nested;
        loop.postAfter(20ms, [&] {
            add("later");
            nested.quit();
        });
        nested.exec();
        add(" end");
        QCoreApplication::quit();
    });
    loop.post([&] { add("next "); });
    runUntilEnd();
    EXPECT_EQ(order, "next later end");
}

TEST_F(QtRunLoopTest, LosesNothingThatManyThreadsPost) {
    constexpr int perThread = 5000;
    int count = 0;
    auto work = [&] {
        if (++count == 4 * perThread)
            QCoreApplication::quit();
    };
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&, thread] {
            for (int i = 0; i < perThread; ++i)
                loop.postAfter(std::chrono::microseconds(i % 3 == 0 ? 100 * thread : 0), work);
        });
    }
    runUntilEnd();
    EXPECT_EQ(count, 4 * perThread);
}

} // namespace
} // namespace platform::desktop
