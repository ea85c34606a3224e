#pragma once

#include "Platform/Desktop/Applications/DesktopEntry.h"
#include "Platform/LoginItem.h"

namespace platform::desktop {

// An entry of the program among those that the desktop starts when the user logs in. The entry is the
// program's own if it starts this very file. Main thread.
class DesktopLoginItem : public LoginItem {
public:
    // The user's folder of such entries, which need not exist.
    DesktopLoginItem(const std::filesystem::path& folder, std::filesystem::path executable);

    // What the user or the desktop has switched off in the entry is not enabled.
    Status status() override;
    // Takes the place of any other entry there.
    void registerItem() override;
    // Leaves an entry that is not the program's own.
    void unregisterItem() override;

private:
    // The entry if it is the program's own.
    std::optional<DesktopEntry> ownEntry() const;

    const std::filesystem::path file;
    const std::filesystem::path program;
};

// A program as the value of Exec in a desktop entry.
std::string execValue(const std::string& program);

} // namespace platform::desktop
