#pragma once

#include "Desktop/XServer.h"
#include "Platform/Desktop/X11/Server/XConnection.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace platform::desktop {

// Runs a command to its end.
void run(const std::string& command);

// A key event as an application sees it.
struct SeenKey {
    bool isPress;
    int code;
    int state;

    bool operator==(const SeenKey&) const = default;
};

void PrintTo(const SeenKey& key, std::ostream* output);

// An application of the test's own: a window on a connection of its own, which has the keyboard.
class TestApplication {
public:
    explicit TestApplication(const std::string& windowClass = "test-application");

    xcb_window_t window() const { return shown; }
    void setProperty(const std::string& name, const std::string& type, std::uint32_t value) const;

    // What has come to the window since the last time. Everything typed before the call has arrived.
    std::vector<SeenKey> takeKeys();

private:
    XConnection x;
    xcb_window_t shown;
};

} // namespace platform::desktop
