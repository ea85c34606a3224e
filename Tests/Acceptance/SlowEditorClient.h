#pragma once

#include "Acceptance/Display.h"

namespace tests {

// The slow editor as a test sees it: running on the display, in front.
class SlowEditorClient {
public:
    struct Content {
        std::string text;
        // The selection, in bytes; a caret where both are the same.
        std::size_t from = 0;
        std::size_t to = 0;
        // When the last Control-V reached the editor.
        Clock::time_point pasteKeyTime;
    };

    explicit SlowEditorClient(const Display& display);

    void setUp(const std::string& text, std::size_t from, std::size_t to,
               std::chrono::milliseconds keyDelay = 0ms, std::chrono::milliseconds fetchDelay = 0ms) const;

    // What it holds once it has worked off all that was asked of it.
    Content content() const;

    DisplayProcess& program() { return *process; }

private:
    std::string ask(const std::string& command) const;

    std::unique_ptr<DisplayProcess> process;
};

} // namespace tests
