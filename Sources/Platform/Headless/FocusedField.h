#pragma once

#include "Platform/Foundation/RunLoop.h"
#include "Platform/Headless/HeadlessPasteboard.h"
#include "Platform/Input/KeyEvent.h"

#include <string>

namespace platform::headless {

// The text field that has the keyboard. It answers Command-A, -C, -V and Right Arrow as any text field does,
// and can be told to do so badly. Positions are bytes.
class FocusedField {
public:
    FocusedField(RunLoop& clock, HeadlessPasteboard& clipboard) : runLoop(clock), pasteboard(clipboard) {}

    // The text with its caret at the end and nothing selected.
    void setText(std::string newText);
    void select(std::size_t from, std::size_t to);
    std::string selectedText() const { return text.substr(selectionStart, selectionEnd - selectionStart); }

    void keyDown(const KeyEvent& event);

    std::string text;
    // Equal where there is only a caret.
    std::size_t selectionStart = 0;
    std::size_t selectionEnd = 0;

    // How many Command-C with something selected it ignores, and after how long it answers those that it does
    // not.
    int ignoredCopies = 0;
    Duration copyDelay{};

private:
    void copy();
    void paste();

    RunLoop& runLoop;
    HeadlessPasteboard& pasteboard;
};

} // namespace platform::headless
