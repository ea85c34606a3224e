#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace platform::desktop {

// The main group of a desktop's file about an application.
class DesktopEntry {
public:
    // Nothing if the file cannot be read.
    static std::optional<DesktopEntry> read(const std::filesystem::path& file);

    explicit DesktopEntry(const std::string& text);

    std::optional<std::string> value(const std::string& key) const;

    // The value for the first of the locales that has one, else the plain one.
    std::optional<std::string> localizedValue(const std::string& key,
                                              const std::vector<std::string>& locales) const;

private:
    std::map<std::string, std::string> values;
};

} // namespace platform::desktop
