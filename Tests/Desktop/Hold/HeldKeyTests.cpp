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
    desktop::HoldCommands commands{key, runLoop};
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
    std::vector<const char*> commands;
    const char* heard;
};

} // namespace

TEST_F(HeldKeyTest, DoesWhatCommandsSayThoughOneOvertakesTheOther) {
    listen();
    const std::vector<Course> courses{
        {"hold", {"press", "release"}, "DU"},
        {"repeats", {"press", "press", "press", "release"}, "DU"},
        {"overtaken press", {"release", "press"}, "DU"},
        {"two taps", {"press", "release", "release", "press"}, "DUDU"},
        {"toggle", {"toggle", "toggle"}, "DU"},
        {"cancel, and a new hold", {"press", "cancel", "release", "press", "release"}, "DEUDU"},
        {"cancel while up", {"cancel"}, ""},
    };
    for (const auto& course : courses) {
        SCOPED_TRACE(course.name);
        heard.clear();
        for (const auto* command : course.commands)
            EXPECT_TRUE(commands.perform(command));
        EXPECT_EQ(heard, course.heard);
    }
    heard.clear();
    commands.perform("release");
    runLoop.advance(1s);
    commands.perform("press");
    EXPECT_EQ(heard, "D");
    EXPECT_FALSE(commands.perform("hold"));
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
