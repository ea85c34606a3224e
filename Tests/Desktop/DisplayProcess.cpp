#include "Desktop/DisplayProcess.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace tests {
namespace {

std::vector<std::string> environmentWith(const DisplayProcess::Environment& changes) {
    std::vector<std::string> result;
    for (char** entry = environ; *entry; ++entry) {
        std::string variable(*entry);
        if (!changes.contains(variable.substr(0, variable.find('='))))
            result.push_back(variable);
    }
    for (const auto& [name, value] : changes)
        result.push_back(name + "=" + value);
    return result;
}

std::vector<char*> pointersTo(std::vector<std::string>& strings) {
    std::vector<char*> result;
    for (auto& string : strings)
        result.push_back(string.data());
    result.push_back(nullptr);
    return result;
}

} // namespace

DisplayProcess::DisplayProcess(std::vector<std::string> command, const Environment& changes) {
    // A test that crashes leaves nothing running.
    command.insert(command.begin(), {"setpriv", "--pdeathsig", "KILL"});
    std::array<int, 2> in{};
    std::array<int, 2> out{};
    if (pipe2(in.data(), O_CLOEXEC) != 0 || pipe2(out.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("No pipe");
    posix_spawn_file_actions_t actions{};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDERR_FILENO);
    auto environment = environmentWith(changes);
    const int error = posix_spawnp(&process, "setpriv", &actions, nullptr, pointersTo(command).data(),
                                   pointersTo(environment).data());
    posix_spawn_file_actions_destroy(&actions);
    close(in[0]);
    close(out[1]);
    input = in[1];
    reader = std::thread([this, descriptor = out[0]] { readOutput(descriptor); });
    if (error != 0)
        throw std::runtime_error("Cannot start " + command[3]);
}

DisplayProcess::~DisplayProcess() {
    if (!status) {
        signal(SIGKILL);
        awaitEnd();
    }
    close(input);
    reader.join();
}

void DisplayProcess::signal(int number) const {
    if (!status)
        kill(process, number);
}

void DisplayProcess::writeLine(const std::string& line) const {
    const std::string bytes = line + "\n";
    for (std::size_t written = 0; written < bytes.size();) {
        const auto count = write(input, bytes.data() + written, bytes.size() - written);
        if (count <= 0)
            throw std::runtime_error("The program no longer reads");
        written += static_cast<std::size_t>(count);
    }
}

DisplayProcess::Line DisplayProcess::awaitLine(const std::string& text, Clock::duration limit) {
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

std::optional<int> DisplayProcess::awaitEnd(Clock::duration limit) {
    int result = 0;
    const bool hasEnded =
        status || comesTrue([this, &result] { return waitpid(process, &result, WNOHANG) > 0; }, limit);
    if (hasEnded && !status)
        status = WIFSIGNALED(result) ? 128 + WTERMSIG(result) : WEXITSTATUS(result);
    return status;
}

std::string DisplayProcess::output() const {
    std::lock_guard lock(mutex);
    std::string result;
    for (const auto& line : lines)
        result += line.text + "\n";
    return result;
}

void DisplayProcess::readOutput(int descriptor) {
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
