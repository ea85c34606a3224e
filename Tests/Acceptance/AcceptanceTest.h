#pragma once

#include "Acceptance/AcceptanceProgram.h"
#include "Acceptance/TestEditor.h"

#include <gtest/gtest.h>

namespace tests {

// Whether to run with the big numbers, which takes many minutes.
inline bool isFullRun() {
    return std::getenv("LUMARIN_FULL") != nullptr;
}

// A display, somebody at its keyboard, and the program running.
struct AcceptanceDesk {
    explicit AcceptanceDesk(const std::vector<std::string>& keyboardMap = {"us"}) : display(keyboardMap) {}

    Display display;
    ServiceDouble service;
    Person person;
    AcceptanceProgram program{display, service};
};

// What is on the clipboard, as any other program sees it: each target's type, format and bytes.
using ClipboardContent = std::map<std::string, std::tuple<std::string, int, std::string>>;

inline ClipboardContent clipboardContent(SelectionProbe& probe) {
    ClipboardContent result;
    if (probe.owner() == XCB_NONE)
        return result;
    for (const auto& target : probe.targets())
        if (target != "TARGETS" && target != "MULTIPLE" && target != "TIMESTAMP" && target != "SAVE_TARGETS")
            if (const auto form = probe.fetch(target))
                result[target] = {form->type, form->format, form->bytes};
    return result;
}

} // namespace tests
