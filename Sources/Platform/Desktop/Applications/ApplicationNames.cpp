#include "Platform/Desktop/Applications/ApplicationNames.h"

#include "Platform/Desktop/Applications/DesktopEntry.h"

#include <algorithm>

#include <strings.h>

namespace platform::desktop {

namespace {

bool isSame(const std::string& one, const std::string& other) {
    return !one.empty() && strcasecmp(one.c_str(), other.c_str()) == 0;
}

bool isNameOf(const WindowClass& windowClass, const std::string& name) {
    return isSame(windowClass.name, name) || isSame(windowClass.instance, name);
}

// Files are called after their applications, many by a name with the maker's domain: org.xfce.mousepad.
bool isCalledAfter(const WindowClass& windowClass, const std::string& fileName) {
    return isNameOf(windowClass, fileName) || isNameOf(windowClass, fileName.substr(fileName.rfind('.') + 1));
}

} // namespace

void ApplicationNames::read() {
    applications = std::async(std::launch::async, applicationsIn, folders, locales);
}

std::optional<std::string> ApplicationNames::nameOf(const WindowClass& windowClass) const {
    if (!applications.valid() || applications.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
        return std::nullopt;
    const auto& known = applications.get();
    auto found = std::ranges::find_if(
        known, [&](const Application& one) { return isNameOf(windowClass, one.windowClass); });
    if (found == known.end())
        found = std::ranges::find_if(
            known, [&](const Application& one) { return isCalledAfter(windowClass, one.fileName); });
    return found == known.end() ? std::nullopt : found->name;
}

std::vector<ApplicationNames::Application>
ApplicationNames::applicationsIn(const std::vector<std::filesystem::path>& folders,
                                 const std::vector<std::string>& locales) {
    std::vector<Application> result;
    for (const auto& folder : folders) {
        std::error_code error;
        // A folder that cannot be read to its end ends there.
        for (std::filesystem::directory_iterator next(folder / "applications", error), end;
             !error && next != end; next.increment(error)) {
            const auto& file = next->path();
            if (file.extension() != ".desktop")
                continue;
            if (const auto entry = DesktopEntry::read(file))
                result.push_back({file.stem().string(), entry->value("StartupWMClass").value_or(""),
                                  entry->localizedValue("Name", locales)});
        }
    }
    return result;
}

} // namespace platform::desktop
