#pragma once

#include <filesystem>
#include <future>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace platform::desktop {

// The names people know applications by, from the desktop's files about them. One thread.
class ApplicationNames {
public:
    // The folders that hold "applications", the most important first, and the user's locales ("zh_CN", "zh").
    ApplicationNames(std::vector<std::filesystem::path> dataFolders, std::vector<std::string> userLocales)
        : folders(std::move(dataFolders)), locales(std::move(userLocales)) {}

    // Reads the files, in the background.
    void read();

    // The name of the application that goes by one of these where its windows or programs are told apart, if
    // the desktop has a file about it and that has been read.
    std::optional<std::string> nameOf(std::span<const std::string> identifiers) const;

private:
    struct Application {
        std::string fileName;
        std::string windowClass;
        std::optional<std::string> name;
    };

    static std::vector<Application> applicationsIn(const std::vector<std::filesystem::path>& folders,
                                                   const std::vector<std::string>& locales);

    std::vector<std::filesystem::path> folders;
    std::vector<std::string> locales;
    std::shared_future<std::vector<Application>> applications;
};

} // namespace platform::desktop
