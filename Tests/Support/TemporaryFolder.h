#pragma once

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

namespace tests {

// Makes the folders above the file too.
inline void writeFile(const std::filesystem::path& file, std::string_view bytes) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << bytes;
}

// A folder that goes away with the test.
class TemporaryFolder {
public:
    TemporaryFolder() {
        auto name = (std::filesystem::temp_directory_path() / "lumarin-test-XXXXXX").string();
        if (!mkdtemp(name.data()))
            throw std::system_error(errno, std::generic_category(), "No temporary folder");
        folder = name;
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

    std::filesystem::path operator/(std::string_view name) const { return folder / name; }
    const std::filesystem::path& path() const { return folder; }

    std::filesystem::path write(std::string_view name, std::string_view bytes) const {
        writeFile(folder / name, bytes);
        return folder / name;
    }

private:
    std::filesystem::path folder;
};

} // namespace tests
