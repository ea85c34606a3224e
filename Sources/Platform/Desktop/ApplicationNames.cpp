#include "Platform/Desktop/ApplicationNames.h"

#include "Platform/Desktop/DesktopEntry.h"

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

std::optional<std::string> ApplicationNames::nameOf(const WindowClass& windowClass) {
    auto key = windowClass.instance + '\n' + windowClass.name;
    auto found = known.find(key);
    if (found == known.end())
        found = known.emplace(key, find(windowClass)).first;
    return found->second;
}

std::optional<std::string> ApplicationNames::find(const WindowClass& windowClass) const {
    std::optional<std::string> byFileName;
    for (const auto& folder : folders) {
        std::error_code error;
        for (const auto& file : std::filesystem::directory_iterator(folder / "applications", error)) {
            if (file.path().extension() != ".desktop")
                continue;
            bool fits = !byFileName && isCalledAfter(windowClass, file.path().stem().string());
            auto entry = DesktopEntry::read(file.path());
            if (!entry)
                continue;
            if (isNameOf(windowClass, entry->value("StartupWMClass").value_or("")))
                return entry->localizedValue("Name", locales);
            if (fits)
                byFileName = entry->localizedValue("Name", locales);
        }
    }
    return byFileName;
}

} // namespace platform::desktop
