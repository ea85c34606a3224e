#include "Platform/Desktop/Session/DesktopLoginItem.h"

#include "Platform/Foundation/FileManager.h"
#include "Platform/Foundation/Text.h"

#include <algorithm>
#include <stdexcept>
#include <system_error>

namespace platform::desktop {

namespace {

constexpr const char* fileName = "lumarin.desktop";

bool isTrue(const DesktopEntry& entry, const char* key, bool ifMissing) {
    return entry.value(key).value_or(ifMissing ? "true" : "false") == "true";
}

} // namespace

std::string execValue(const std::string& program) {
    // Some desktops look for the first word's file before they know what its per cent signs mean.
    std::string value = program.find('%') == std::string::npos ? "\"" : "env \"";
    for (char letter : program) {
        switch (letter) {
        // A percent sign would stand for a file or a name.
        case '%':
            value += "%%";
            break;
        // Escaped once for the command line, and its backslashes once more for the file.
        case '"':
        case '`':
        case '$':
            value += std::string("\\\\") + letter;
            break;
        case '\\':
            value += "\\\\\\\\";
            break;
        default:
            value += letter;
        }
    }
    return value + '"';
}

DesktopLoginItem::DesktopLoginItem(const std::filesystem::path& folder, std::filesystem::path executable)
    : file(folder / fileName), program(std::move(executable)) {}

LoginItem::Status DesktopLoginItem::status() {
    const auto entry = ownEntry();
    const bool isEnabled = entry && entry->value("Type") == "Application" && !isTrue(*entry, "Hidden", false)
                           && isTrue(*entry, "X-GNOME-Autostart-enabled", true);
    return isEnabled ? Status::enabled : Status::notRegistered;
}

void DesktopLoginItem::registerItem() {
    const auto path = program.string();
    if (!text::isValid(path) || std::ranges::any_of(path, [](unsigned char byte) { return byte < ' '; }))
        throw std::runtime_error("A program whose path has such characters cannot be started at login: "
                                 + text::repaired(path));
    files::createPrivateDirectory(file.parent_path());
    files::writeAtomically(file, "[Desktop Entry]\nType=Application\nName=Lumarin\nExec=" + execValue(path)
                                     + "\nIcon=lumarin\nTerminal=false\nX-GNOME-Autostart-enabled=true\n");
}

void DesktopLoginItem::unregisterItem() {
    if (!ownEntry())
        return;
    std::error_code error;
    std::filesystem::remove(file, error);
    if (error)
        throw std::system_error(error, "The file " + file.string() + " could not be removed");
}

std::optional<DesktopEntry> DesktopLoginItem::ownEntry() const {
    auto entry = DesktopEntry::read(file);
    if (entry && entry->value("Exec") != execValue(program.string()))
        entry.reset();
    return entry;
}

} // namespace platform::desktop
