#include "Platform/Desktop/Session/SingleInstance.h"

#include "Platform/Foundation/FileManager.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace platform::desktop {

namespace {

// A lock of a kind that the kernel knows the owner of.
struct flock lockOfWholeFile() {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return lock;
}

} // namespace

SingleInstance::SingleInstance(const std::filesystem::path& folder) {
    files::createPrivateDirectory(folder);
    file = open((folder / "running.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    auto lock = lockOfWholeFile();
    taken = file >= 0 && fcntl(file, F_SETLK, &lock) != 0 && (errno == EAGAIN || errno == EACCES);
}

SingleInstance::~SingleInstance() {
    if (file >= 0)
        close(file);
}

bool SingleInstance::callOwner() const {
    auto lock = lockOfWholeFile();
    // An owner on another machine has no number here that is one of a process.
    return fcntl(file, F_GETLK, &lock) == 0 && lock.l_type == F_WRLCK && lock.l_pid > 0
           && kill(lock.l_pid, call) == 0;
}

} // namespace platform::desktop
