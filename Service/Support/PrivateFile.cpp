#include "Service/Support/PrivateFile.h"

#include <sys/stat.h>
#include <unistd.h>

namespace lumarin::service {

std::string exposure(const std::filesystem::path& file) {
    struct stat facts {};
    if (::stat(file.c_str(), &facts) != 0)
        return {};
    const bool isOurs = facts.st_uid == ::geteuid();
    const mode_t others = isOurs ? S_IRWXG | S_IRWXO : S_IRWXO;
    return (facts.st_mode & others) == 0
               ? ""
               : "which others can read; do chmod " + std::string(isOurs ? "600 " : "o-rwx ") + file.string()
                     + ".";
}

} // namespace lumarin::service
