#include "Support/TestProcess.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace tests {

TestProcess::TestProcess(const std::vector<std::string>& command, const Environment& changes) {
    // A test that crashes leaves nothing running.
    std::vector<std::string> words{"setpriv", "--pdeathsig", "KILL", "env"};
    for (const auto& [name, value] : changes)
        words.push_back(name + "=" + value);
    words.insert(words.end(), command.begin(), command.end());
    std::vector<char*> arguments;
    for (auto& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    std::array<int, 2> out{};
    if (pipe2(out.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("No pipe");
    posix_spawn_file_actions_t actions{};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDERR_FILENO);
    const int error = posix_spawnp(&process, "setpriv", &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(out[1]);
    if (error != 0)
        throw std::runtime_error("Cannot start setpriv");
    reader = std::thread([this, descriptor = out[0]] { readOutput(descriptor); });
}

TestProcess::~TestProcess() {
    if (!status) {
        signal(SIGKILL);
        awaitEnd();
    }
    reader.join();
}

void TestProcess::signal(int number) const {
    if (!status)
        kill(process, number);
}

TestProcess::Line TestProcess::awaitLine(const std::string& text, Clock::duration limit) {
    std::unique_lock lock(mutex);
    std::optional<Line> found;
    changed.wait_for(lock, limit, [this, &text, &found] {
        for (; seen < lines.size() && !found; ++seen)
            if (lines[seen].text.find(text) != std::string::npos)
                found = lines[seen];
        return found.has_value();
    });
    lock.unlock();
    if (!found)
        throw std::runtime_error("No line \"" + text + "\" in:\n" + output());
    return *found;
}

std::optional<int> TestProcess::awaitEnd(Clock::duration limit) {
    int result = 0;
    const bool hasEnded =
        status || comesTrue([this, &result] { return waitpid(process, &result, WNOHANG) > 0; }, limit);
    if (hasEnded && !status)
        status = WIFSIGNALED(result) ? 128 + WTERMSIG(result) : WEXITSTATUS(result);
    return status;
}

std::string TestProcess::output() const {
    std::lock_guard lock(mutex);
    std::string result;
    for (const auto& line : lines)
        result += line.text + "\n";
    return result;
}

void TestProcess::readOutput(int descriptor) {
    std::string pending;
    std::array<char, 65536> buffer{};
    for (;;) {
        const auto count = read(descriptor, buffer.data(), buffer.size());
        if (count <= 0)
            break;
        const auto now = Clock::now();
        pending.append(buffer.data(), static_cast<std::size_t>(count));
        std::lock_guard lock(mutex);
        for (std::size_t end = 0; (end = pending.find('\n')) != std::string::npos; pending.erase(0, end + 1))
            lines.push_back({pending.substr(0, end), now});
        changed.notify_all();
    }
    close(descriptor);
}

} // namespace tests
