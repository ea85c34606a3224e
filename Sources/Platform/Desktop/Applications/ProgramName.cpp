#include "Platform/Desktop/Applications/ProgramName.h"

#include <filesystem>
#include <fstream>

namespace platform::desktop {

std::optional<std::string> programOf(pid_t process) {
    // The kernel keeps the first 15 bytes of the name.
    constexpr std::size_t kept = 15;
    auto folder = std::filesystem::path("/proc") / std::to_string(process);
    std::string name;
    if (std::ifstream file(folder / "comm"); !std::getline(file, name) || name.empty())
        return std::nullopt;
    std::error_code error;
    if (name.size() == kept) {
        if (auto program = std::filesystem::read_symlink(folder / "exe", error); !error)
            return program.filename().string();
    }
    return name;
}

} // namespace platform::desktop
