#pragma once

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <sys/types.h>
#include <thread>
#include <vector>

namespace tests {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

// A program that a test has started. It ends with this object, whatever happens to the test.
class DisplayProcess {
public:
    using Environment = std::map<std::string, std::string>;

    struct Line {
        std::string text;
        Clock::time_point time;
    };

    // The environment is the test's own with these changes.
    DisplayProcess(std::vector<std::string> command, const Environment& changes);
    ~DisplayProcess();
    DisplayProcess(const DisplayProcess&) = delete;
    DisplayProcess& operator=(const DisplayProcess&) = delete;

    pid_t pid() const { return process; }
    void signal(int number) const;
    void writeLine(const std::string& line) const;

    // The next line of its output (both streams) that contains `text`, behind the one this gave before.
    // Throws with all the output if it doesn't come.
    Line awaitLine(const std::string& text, Clock::duration limit = 20s);

    // The exit status, or 128 and the signal's number; nothing if it still runs after `limit`.
    std::optional<int> awaitEnd(Clock::duration limit = 10s);

    std::string output() const;

private:
    void readOutput(int descriptor);

    pid_t process = 0;
    int input = -1;
    std::optional<int> status;
    mutable std::mutex mutex;
    std::condition_variable changed;
    std::vector<Line> lines;
    std::size_t seen = 0;
    std::thread reader;
};

// Looks every few milliseconds until `condition` holds. Whether it came to.
template <typename Condition>
bool comesTrue(Condition condition, Clock::duration limit = 10s) {
    for (auto deadline = Clock::now() + limit; Clock::now() < deadline; std::this_thread::sleep_for(5ms))
        if (condition())
            return true;
    return condition();
}

} // namespace tests
