#include "Platform/Desktop/Hold/HoldCommands.h"
#include "Platform/Headless/ManualRunLoop.h"

#include <gtest/gtest.h>

namespace tests {
namespace {

using namespace platform;
using namespace std::chrono_literals;

// Writes down what the program hears: D and U for Fn, E for Escape.
struct HeldKeyTest : testing::Test {
    HeldKeyTest() {
        attached = tap->addTo(runLoop);
        tap->enable();
    }

    void listen() {
        monitor = key.addMonitor(maskOf(EventType::keyDown), [this](const KeyEvent& event) {
            heard += event.keyCode == key::escape ? 'E' : '?';
        });
    }

    headless::ManualRunLoop runLoop;
    std::string heard;
    desktop::HeldKey key{runLoop};
    desktop::HoldCommands commands{key};
    std::unique_ptr<EventTap> tap =
        key.makeTap(maskOf(EventType::flagsChanged), [this](EventType, const KeyEvent& event) {
            heard += (event.flags & flag::secondaryFn) != 0 ? 'D' : 'U';
            return std::optional<KeyEvent>();
        });
    std::unique_ptr<RunLoopSource> attached;
    std::unique_ptr<EventMonitor> monitor;
};

struct Course {
    const char* name;
    // In the order in which they come: the command and the time its process was started.
    std::vector<std::pair<const char*, unsigned>> commands;
    const char* heard;
};

} // namespace

TEST_F(HeldKeyTest, TakesCommandsInTheOrderInWhichTheyWereStarted) {
    listen();
    const std::vector<Course> courses{
        {"hold", {{"press", 1}, {"release", 2}}, "DU"},
        {"repeats", {{"press", 3}, {"press", 4}, {"press", 5}, {"release", 6}}, "DU"},
        {"overtaken press", {{"release", 8}, {"press", 7}}, "DU"},
        {"next hold", {{"press", 9}, {"release", 10}, {"release", 11}}, "DU"},
        {"toggle", {{"toggle", 12}, {"toggle", 13}}, "DU"},
        {"cancel", {{"press", 14}, {"cancel", 15}, {"release", 16}}, "DEU"},
        {"cancel while up", {{"cancel", 17}}, ""},
    };
    for (const auto& course : courses) {
        SCOPED_TRACE(course.name);
        heard.clear();
        for (const auto& [command, started] : course.commands)
            EXPECT_TRUE(commands.perform(command, {started, 0}));
        EXPECT_EQ(heard, course.heard);
    }
    EXPECT_FALSE(commands.perform("hold", {18, 0}));
}

TEST_F(HeldKeyTest, EndsALostHoldOnceSomebodyListens) {
    key.press();
    runLoop.advance(61s);
    EXPECT_EQ(heard, "D");
    key.release();
    listen();
    runLoop.advance(1ms);
    EXPECT_EQ(heard, "DEU");
}

} // namespace tests
