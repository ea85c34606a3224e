#pragma once

#include "Support/TestProcess.h"

namespace tests {

// A window manager that is through with its start: windows that come before that don't get the keyboard.
class WindowManager {
public:
    explicit WindowManager(const TestProcess::Environment& environment = {})
        : process({"openbox", "--startup", "echo started"}, environment) {
        process.awaitLine("started");
    }

private:
    TestProcess process;
};

} // namespace tests
