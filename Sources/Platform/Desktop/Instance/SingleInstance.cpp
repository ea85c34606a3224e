#include "Platform/Desktop/Instance/SingleInstance.h"

#include "Platform/Foundation/FileManager.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <thread>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace platform::desktop {
namespace {

using namespace std::chrono_literals;

constexpr const char* lockName = "running.lock";
constexpr const char* socketName = "running.socket";

// A copy that has taken the place a moment ago does not listen yet.
constexpr auto patience = 500ms;
constexpr auto tryAgainAfter = 5ms;

files::Descriptor opened(const std::filesystem::path& folder) {
    return files::Descriptor(open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

files::Descriptor madeLock(const std::filesystem::path& folder) {
    files::createPrivateDirectory(folder);
    return files::Descriptor(open((folder / lockName).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
}

struct flock lockOfWholeFile() {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return lock;
}

sockaddr_un addressIn(const files::Descriptor& folder) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::snprintf(address.sun_path, sizeof address.sun_path, "/proc/self/fd/%d/%s", folder.number(),
                  socketName);
    return address;
}

const sockaddr* generic(const sockaddr_un& address) {
    return reinterpret_cast<const sockaddr*>(&address);
}

files::Descriptor datagramSocket() {
    return files::Descriptor(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

} // namespace

SingleInstance::SingleInstance(const std::filesystem::path& place)
    : lock(madeLock(place)), socket(datagramSocket()) {
    auto whole = lockOfWholeFile();
    taken =
        lock.isOpen() && fcntl(lock.number(), F_SETLK, &whole) != 0 && (errno == EAGAIN || errno == EACCES);
    if (lock.isOpen() && !taken)
        listen(opened(place));
}

void SingleInstance::listen(const files::Descriptor& folder) {
    unlinkat(folder.number(), socketName, 0);
    const auto address = addressIn(folder);
    // The folder is the user's alone, and so is what is in it.
    if (bind(socket.number(), generic(address), sizeof address) != 0)
        socket.close();
}

std::optional<std::string> SingleInstance::receive() const {
    std::array<char, 64> buffer;
    const auto size = recv(socket.number(), buffer.data(), buffer.size(), 0);
    return size >= 0 ? std::optional(std::string(buffer.data(), static_cast<std::size_t>(size)))
                     : std::nullopt;
}

bool callRunningCopy(const std::filesystem::path& place, std::string_view command) {
    const auto folder = opened(place);
    const auto lock = files::Descriptor(openat(folder.number(), lockName, O_RDONLY | O_CLOEXEC));
    // Asked, not tried: a copy that is just being started would find the place taken.
    auto whole = lockOfWholeFile();
    if (fcntl(lock.number(), F_GETLK, &whole) != 0 || whole.l_type == F_UNLCK)
        return false;
    const auto socket = datagramSocket();
    const auto address = addressIn(folder);
    const auto latest = std::chrono::steady_clock::now() + patience;
    while (sendto(socket.number(), command.data(), command.size(), 0, generic(address), sizeof address) < 0) {
        if (std::chrono::steady_clock::now() >= latest)
            return false;
        std::this_thread::sleep_for(tryAgainAfter);
    }
    return true;
}

} // namespace platform::desktop
