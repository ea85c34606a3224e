#pragma once

#include "Platform/Desktop/ActiveWindow.h"

#include <filesystem>
#include <map>

namespace platform::desktop {

// The names people know applications by, from the desktop's files about them. One thread.
class ApplicationNames {
public:
    // The folders that hold "applications", the most important first, and the user's locales ("zh_CN", "zh").
    ApplicationNames(std::vector<std::filesystem::path> dataFolders, std::vector<std::string> userLocales)
        : folders(std::move(dataFolders)), locales(std::move(userLocales)) {}

    // The name of the application whose windows are of that class, if the desktop has a file about it.
    std::optional<std::string> nameOf(const WindowClass& windowClass);

private:
    std::optional<std::string> find(const WindowClass& windowClass) const;

    std::vector<std::filesystem::path> folders;
    std::vector<std::string> locales;
    std::map<std::string, std::optional<std::string>> known;
};

} // namespace platform::desktop
