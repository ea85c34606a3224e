#pragma once

#include "Support/TemporaryFolder.h"

#include <iterator>
#include <sys/stat.h>
#include <vector>

namespace tests {

// The whole file as it is, whatever the code under test thinks of it.
inline std::string bytesOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

inline unsigned permissionsOf(const std::filesystem::path& path) {
    return static_cast<unsigned>(std::filesystem::status(path).permissions());
}

// Things at a file's place that cannot be read as a file. (A file without permission would not stop a test
// that runs as root.)
inline std::vector<std::filesystem::path> unreadableThings(const TemporaryFolder& folder) {
    std::filesystem::create_directory(folder / "directory");
    mkfifo((folder / "pipe").c_str(), S_IRUSR | S_IWUSR);
    std::filesystem::create_symlink("loop", folder / "loop");
    std::filesystem::create_symlink("/dev/zero", folder / "device");
    folder.write("huge", "");
    std::filesystem::resize_file(folder / "huge", std::uintmax_t{100} << 20U);
    return {folder / "directory", folder / "pipe", folder / "loop", folder / "device", folder / "huge"};
}

} // namespace tests
