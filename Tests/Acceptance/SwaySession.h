#pragma once

#include "Support/TemporaryFolder.h"
#include "Support/TestProcess.h"

#include <memory>

namespace tests {

// A Wayland session of the test's own without a screen, and a home for the programs that are started in it.
// The Pause key is bound to the program that `installProgram` puts there.
class SwaySession {
public:
    SwaySession();
    ~SwaySession();
    SwaySession(const SwaySession&) = delete;
    SwaySession& operator=(const SwaySession&) = delete;

    std::unique_ptr<TestProcess> start(const std::vector<std::string>& command) const;

    // Runs it to its end, and throws if it fails.
    std::string run(const std::vector<std::string>& command) const;

    // Waits until a window of the application has the keyboard, and throws if none comes to.
    void awaitFrontWindow(const std::string& application) const;

    // A picture of the screen, kept with the build under that name.
    void keepScreenshot(const std::string& name) const;

    TemporaryFolder home;

private:
    std::unique_ptr<TestProcess> compositor;
    TestProcess::Environment environment;
};

} // namespace tests
