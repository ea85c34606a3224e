#include "Platform/Headless/FocusedField.h"

namespace platform::headless {

void FocusedField::setText(std::string newText) {
    text = std::move(newText);
    selectionStart = selectionEnd = text.size();
}

void FocusedField::select(std::size_t from, std::size_t to) {
    selectionStart = from;
    selectionEnd = to;
}

void FocusedField::keyDown(const KeyEvent& event) {
    if (event.flags == 0 && event.keyCode == key::rightArrow) {
        // A selection collapses to its end; a caret moves on. Scripted texts have their caret at the end.
        selectionStart = selectionEnd;
    } else if (event.flags == flag::command) {
        if (event.keyCode == key::a)
            select(0, text.size());
        else if (event.keyCode == key::c)
            copy();
        else if (event.keyCode == key::v)
            paste();
    }
}

void FocusedField::copy() {
    if (selectionStart == selectionEnd)
        return;
    if (ignoredCopies > 0) {
        --ignoredCopies;
        return;
    }
    auto copied = selectedText();
    if (copyDelay == Duration::zero())
        pasteboard.setText(copied);
    else
        runLoop.postAfter(copyDelay, [this, copied] { pasteboard.setText(copied); });
}

void FocusedField::paste() {
    auto pasted = pasteboard.text();
    if (!pasted)
        return;
    text.replace(selectionStart, selectionEnd - selectionStart, *pasted);
    selectionStart = selectionEnd = selectionStart + pasted->size();
}

} // namespace platform::headless
