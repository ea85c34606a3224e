#pragma once

#include "Acceptance/Display.h"
#include "Desktop/X11/Clipboard/SelectionClient.h"
#include "Desktop/X11/Clipboard/SelectionProbe.h"

namespace tests {

// A window in front with a text field that can be slow.
class TestEditor {
public:
    explicit TestEditor(ClientScript script = {});

    // The text with the selection in brackets, the caret at its end; how long it is busy before it handles
    // each key, and how late it is in fetching what is pasted.
    void setUp(const std::string& marked, std::chrono::milliseconds keyDelay = 0ms,
               std::chrono::milliseconds pasteDelay = 0ms) const;

    std::string content() const;
    bool comesToHold(const std::string& marked) const;

    xcb_window_t window() const { return client.window(); }
    // When the last Control-V reached it.
    Clock::time_point pasteKeyTime() const;

private:
    SelectionClient client;
    platform::desktop::XConnection x;
};

} // namespace tests
