#pragma once

#include "Service/Support/Handles.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string_view>

namespace lumarin::service {

// A folder whose files anybody may fetch, but for hidden ones and what links lead out of it to.
class FileFolder {
public:
    struct File {
        Descriptor opened;
        std::size_t size;
        const char* contentType;
    };

    explicit FileFolder(const std::filesystem::path& folder) : root(std::filesystem::canonical(folder)) {}

    // The file at `path`, relative to the folder, if there is one.
    std::optional<File> find(std::string_view path) const;

private:
    const std::filesystem::path root;
};

} // namespace lumarin::service
