#include "Platform/Desktop/Applications/DesktopEntry.h"

#include "Platform/Foundation/FileManager.h"

#include <sstream>

namespace platform::desktop {

namespace {

std::string trimmed(const std::string& text) {
    constexpr const char* blanks = " \t\r";
    auto first = text.find_first_not_of(blanks);
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

} // namespace

std::optional<DesktopEntry> DesktopEntry::read(const std::filesystem::path& file) {
    auto text = files::contents(file);
    return text ? std::optional<DesktopEntry>(*text) : std::nullopt;
}

DesktopEntry::DesktopEntry(const std::string& text) {
    std::istringstream lines(text);
    bool isMainGroup = false;
    for (std::string line; std::getline(lines, line);) {
        line = trimmed(line);
        if (line.starts_with('[')) {
            isMainGroup = line == "[Desktop Entry]";
        } else if (auto equals = line.find('=');
                   isMainGroup && equals != std::string::npos && line[0] != '#') {
            values.emplace(trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1)));
        }
    }
}

std::optional<std::string> DesktopEntry::value(const std::string& key) const {
    auto found = values.find(key);
    return found == values.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::string> DesktopEntry::localizedValue(const std::string& key,
                                                        const std::vector<std::string>& locales) const {
    for (const auto& locale : locales) {
        if (auto localized = value(key + '[' + locale + ']'))
            return localized;
    }
    return value(key);
}

} // namespace platform::desktop
