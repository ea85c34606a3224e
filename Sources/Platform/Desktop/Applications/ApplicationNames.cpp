#include "Platform/Desktop/Applications/ApplicationNames.h"

#include "Platform/Desktop/Applications/DesktopEntry.h"

#include <algorithm>

#include <strings.h>

namespace platform::desktop {

namespace {

bool isSame(const std::string& one, const std::string& other) {
    return !one.empty() && strcasecmp(one.c_str(), other.c_str()) == 0;
}

bool isAmong(std::span<const std::string> identifiers, const std::string& name) {
    return std::ranges::any_of(identifiers, [&](const auto& identifier) { return isSame(identifier, name); });
}

// Files are called after their applications, many by a name with the maker's domain: org.xfce.mousepad.
bool isCalledAfter(std::span<const std::string> identifiers, const std::string& fileName) {
    return isAmong(identifiers, fileName) || isAmong(identifiers, fileName.substr(fileName.rfind('.') + 1));
}

} // namespace

void ApplicationNames::read() {
    applications = std::async(std::launch::async, applicationsIn, folders, locales);
}

std::optional<std::string> ApplicationNames::nameOf(std::span<const std::string> identifiers) const {
    if (!applications.valid() || applications.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
        return std::nullopt;
    const auto& known = applications.get();
    auto found = std::ranges::find_if(
        known, [&](const Application& one) { return isAmong(identifiers, one.windowClass); });
    if (found == known.end())
        found = std::ranges::find_if(
            known, [&](const Application& one) { return isCalledAfter(identifiers, one.fileName); });
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
