#include "Platform/Desktop/SingleInstance.h"

#include "Platform/Foundation/FileManager.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace platform::desktop {

SingleInstance::SingleInstance(const std::filesystem::path& folder) {
    files::createPrivateDirectory(folder);
    file = open((folder / "running.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    taken = file >= 0 && flock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

SingleInstance::~SingleInstance() {
    if (file >= 0)
        close(file);
}

} // namespace platform::desktop
