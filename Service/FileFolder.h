#pragma once

#include <filesystem>
#include <httplib.h>
#include <string_view>

namespace lumarin::service {

// A folder whose files anybody may fetch, but for hidden ones and what links lead out of it to. For any
// thread.
class FileFolder {
public:
    explicit FileFolder(const std::filesystem::path& folder) : root(std::filesystem::canonical(folder)) {}

    // Makes the file at `path`, relative to the folder, the response. False if there is none.
    bool answer(std::string_view path, httplib::Response& response) const;

private:
    const std::filesystem::path root;
};

} // namespace lumarin::service
