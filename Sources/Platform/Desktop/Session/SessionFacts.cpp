#include "Platform/Desktop/Session/SessionFacts.h"

#include "Platform/Desktop/Instance/ProgramFiles.h"

#include <QStandardPaths>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <sstream>
#include <string_view>

namespace platform::desktop {

namespace {

// The parts of a locale's name: zh_TW.UTF-8, sr_RS@latin.
struct Locale {
    std::string language;
    std::string territory;
    std::string modifier;

    explicit Locale(std::string name) {
        modifier = cutAt(name, '@');
        cutAt(name, '.');
        territory = cutAt(name, '_');
        language = name;
    }

    bool hasLanguage() const { return !language.empty() && language != "C" && language != "POSIX"; }

private:
    // Leaves what is before the mark and returns what is behind it.
    static std::string cutAt(std::string& text, char mark) {
        auto place = text.find(mark);
        if (place == std::string::npos)
            return {};
        auto rest = text.substr(place + 1);
        text.erase(place);
        return rest;
    }
};

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

std::vector<Locale> chosenLocales() {
    std::vector<Locale> result;
    std::string chosen;
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (chosen = environment(name); !chosen.empty())
            break;
    }
    // The list of languages refines the choice of one; it does not count where none was wanted.
    if (chosen != "C" && chosen != "POSIX") {
        std::istringstream list(environment("LANGUAGE"));
        for (std::string name; std::getline(list, name, ':');)
            result.emplace_back(name);
    }
    result.emplace_back(chosen);
    std::erase_if(result, [](const Locale& locale) { return !locale.hasLanguage(); });
    return result;
}

std::string scriptOf(const Locale& locale) {
    if (locale.language == "zh") {
        constexpr auto traditional = std::to_array<std::string_view>({"TW", "HK", "MO"});
        return std::ranges::find(traditional, locale.territory) == traditional.end() ? "Hans" : "Hant";
    }
    if (locale.modifier == "latin")
        return "Latn";
    return locale.modifier == "cyrillic" ? "Cyrl" : "";
}

template <typename T>
void addOnce(std::vector<T>& list, T value) {
    if (std::ranges::find(list, value) == list.end())
        list.push_back(std::move(value));
}

std::filesystem::path location(QStandardPaths::StandardLocation kind) {
    return QStandardPaths::writableLocation(kind).toStdString();
}

} // namespace

std::vector<std::string> preferredLocales() {
    std::vector<std::string> result;
    for (const auto& locale : chosenLocales()) {
        if (!locale.territory.empty())
            addOnce(result, locale.language + '_' + locale.territory);
        addOnce(result, locale.language);
    }
    return result;
}

std::vector<std::string> preferredLanguageTags() {
    std::vector<std::string> result;
    for (const auto& locale : chosenLocales()) {
        auto tag = locale.language;
        for (const auto& part : {scriptOf(locale), locale.territory}) {
            if (!part.empty())
                tag += '-' + part;
        }
        addOnce(result, tag);
    }
    if (result.empty())
        result.emplace_back("en");
    return result;
}

std::vector<std::filesystem::path> dataFolders() {
    std::vector<std::filesystem::path> result;
    for (const auto& folder : QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation))
        result.emplace_back(folder.toStdString());
    return result;
}

Directories sessionDirectories() {
    Directories result;
    result.applicationSupport = location(QStandardPaths::GenericDataLocation);
    if (auto desktop = location(QStandardPaths::DesktopLocation); !desktop.empty())
        result.desktop = desktop;
    result.configuration = configurationFolder();
    result.downloads = location(QStandardPaths::DownloadLocation);
    result.executable = executableFile();
    result.resources = resourcesFolder();
    return result;
}

} // namespace platform::desktop
