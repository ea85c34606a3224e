#include "Platform/Desktop/Instance/ProgramFiles.h"

#include <array>
#include <cstdlib>

#include <dlfcn.h>

namespace platform::desktop {

std::filesystem::path configurationFolder() {
    const char* const chosen = std::getenv("XDG_CONFIG_HOME");
    // What is not absolute does not count.
    if (chosen && *chosen == '/')
        return std::filesystem::path(chosen) / "Lumarin";
    const char* const home = std::getenv("HOME");
    return std::filesystem::path(home ? home : "/") / ".config/Lumarin";
}

std::filesystem::path executableFile() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error);
}

std::filesystem::path resourcesFolder() {
    const auto folder = executableFile().parent_path();
    const std::array candidates{folder.parent_path() / "Resources",
                                folder.parent_path() / "share/lumarin/Resources", folder / "Resources"};
    for (const auto& candidate : candidates) {
        std::error_code error;
        if (std::filesystem::is_directory(candidate, error))
            return candidate;
    }
    return candidates.front();
}

void* loadLibrary(const char* fileName) {
    const auto folder = executableFile().parent_path();
    for (const auto& place : {folder, folder.parent_path() / "lib/lumarin/plugins"})
        if (auto* const loaded = dlopen((place / fileName).c_str(), RTLD_NOW | RTLD_LOCAL))
            return loaded;
    return nullptr;
}

} // namespace platform::desktop
