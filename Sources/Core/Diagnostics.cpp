#include "Core/Diagnostics.h"

#include "Core/Logger.h"
#include "Data/KeychainManager.h"
#include "Platform/Foundation/Dates.h"
#include "Platform/Foundation/FileManager.h"
#include "Platform/Foundation/Text.h"
#include "Platform/Host.h"

#include <array>

namespace lumarin {

using platform::Host;

namespace {

// Applications that are known to take keys or the clipboard for themselves.
constexpr std::array conflictingTools{"WeChat",      "Wispr Flow", "Flow",    "Karabiner-Elements",
                                      "Hammerspoon", "Loop",       "Raycast", "BetterTouchTool"};

constexpr std::size_t recentLines = 300;

std::string info(const char* key) {
    return Host::current().mainBundle().info(key).value_or("?");
}

std::string system() {
    const auto facts = Host::current().systemFacts();
    std::string lines = "macOS: " + facts.operatingSystemVersion + "\n";
    if (facts.hardwareModel)
        lines += "Mac model: " + *facts.hardwareModel + "\n";
    return lines + "Architecture: Apple Silicon (arm64)\n\n";
}

std::string installedTools() {
    std::string lines;
    for (const std::string name : conflictingTools) {
        std::error_code unknown;
        if (std::filesystem::exists(Host::current().directories().applications / (name + ".app"), unknown))
            lines += "- " + name + "\n";
    }
    return lines.empty() ? "(none of the usual suspects)\n" : lines;
}

std::string settings() {
    const auto language = KeychainManager::loadTargetLanguage();
    return "Mode: " + std::string(rawValue(KeychainManager::loadMode()))
           + "\nTarget language: " + std::string(rawValue(language)) + " (" + std::string(code(language))
           + ")\nStyle: " + std::string(rawValue(KeychainManager::loadStyle())) + "\n";
}

// What follows the last line feed counts as a line, also when it is empty.
std::string recentLog() {
    const auto log = platform::files::contents(LumLog::logURL());
    if (!log || !platform::text::isValid(*log))
        return "(no debug.log found)\n";
    auto start = log->size();
    for (std::size_t lineFeeds = 0; start > 0; --start)
        if ((*log)[start - 1] == '\n' && ++lineFeeds == recentLines)
            break;
    auto tail = log->substr(start);
    if (!tail.ends_with('\n'))
        tail += '\n';
    return tail;
}

} // namespace

std::optional<std::filesystem::path> Diagnostics::generateReport() {
    const auto& desktop = Host::current().directories().desktop;
    if (!desktop)
        return std::nullopt;
    const auto stamp =
        platform::formatted(Host::current().mainRunLoop().date(), "%Y%m%d-%H%M%S", platform::TimeZone::local);
    auto file = *desktop / ("Lumarin-Diagnostics-" + stamp + ".txt");
    try {
        platform::files::writeAtomically(file, buildReport());
        return file;
    } catch (const std::exception& error) {
        LumLog::log(std::string("[Diagnostics] write failed: ") + error.what());
        return std::nullopt;
    }
}

std::string Diagnostics::buildReport() {
    const auto date = platform::formatted(Host::current().mainRunLoop().date(), "%Y-%m-%d %H:%M:%S +0000",
                                          platform::TimeZone::utc);
    const bool isTrusted = Host::current().isProcessTrusted();
    return "=== Lumarin Diagnostics ===\nGenerated: " + date
           + "\n\nApp version: " + info("CFBundleShortVersionString") + " (build " + info("CFBundleVersion")
           + ")\n" + system() + "=== Permissions ===\nAccessibility: "
           + (isTrusted ? "GRANTED" : "NOT GRANTED  <-- Fn won't work without this")
           + "\n\n=== Potentially conflicting apps installed ===\n" + installedTools()
           + "\n=== Current settings ===\n" + settings() + "\n=== Recent log (last 300 lines) ===\n"
           + recentLog();
}

} // namespace lumarin
