#pragma once

#include "Support/ComesTrue.h"

#include <condition_variable>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace tests {

// A program that a test has started. It ends with this object, whatever happens to the test.
class TestProcess {
public:
    using Environment = std::map<std::string, std::string>;

    struct Line {
        std::string text;
        Clock::time_point time;
    };

    // The environment is the test's own with these changes.
    TestProcess(const std::vector<std::string>& command, const Environment& changes);
    ~TestProcess();
    TestProcess(const TestProcess&) = delete;
    TestProcess& operator=(const TestProcess&) = delete;

    pid_t pid() const { return process; }
    void signal(int number) const;

    // The next line of its output (both streams) that contains `text`, behind the one this gave before.
    // Throws with all the output if it doesn't come.
    Line awaitLine(const std::string& text, Clock::duration limit = 20s);

    // The exit status, or 128 and the signal's number; nothing if it still runs after `limit`.
    std::optional<int> awaitEnd(Clock::duration limit = 10s);

    std::string output() const;

private:
    void readOutput(int descriptor);

    pid_t process = 0;
    std::optional<int> status;
    mutable std::mutex mutex;
    std::condition_variable changed;
    std::vector<Line> lines;
    std::size_t seen = 0;
    std::thread reader;
};

} // namespace tests
