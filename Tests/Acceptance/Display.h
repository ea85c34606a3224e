#pragma once

#include "Desktop/WindowManager.h"
#include "Desktop/XServer.h"
#include "Support/TemporaryFolder.h"

#include <memory>

namespace tests {

// An X server of the test's own with a window manager, and a home for the programs that are started on it. It
// is also the display that connections of the test's own process go to.
class Display {
public:
    // Layouts and options as setxkbmap takes them.
    explicit Display(const std::vector<std::string>& keyboardMap = {"us"});

    std::unique_ptr<TestProcess> start(const std::vector<std::string>& command) const;

    // The bus of what is started from now on; without one, nobody has any.
    void setSessionBus(const std::string& address) { environment["DBUS_SESSION_BUS_ADDRESS"] = address; }

    // Waits until a window of that class has the keyboard, and throws if none comes to.
    static void awaitFrontWindow(const std::string& className);

    // A picture of the screen, kept with the build under that name.
    void keepScreenshot(const std::string& name) const;

    // The server dies; so does everything that hangs on it.
    void end() { server.end(); }

    TemporaryFolder home;

private:
    XServer server;
    TestProcess::Environment environment;
    std::optional<WindowManager> windowManager;
};

} // namespace tests
