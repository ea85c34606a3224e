#pragma once

#include "Support/TestProcess.h"

namespace tests {

// An X server of the test's own, which the variable DISPLAY names from then on. Held keys repeat soon.
class XServer {
public:
    // With further options, as Xvfb takes them.
    explicit XServer(const std::string& options = "");

    const std::string& name() const { return display; }

    // It dies; so does everything that hangs on it.
    void end();

private:
    TestProcess process;
    std::string display;
};

} // namespace tests
