#pragma once

#include "Platform/Desktop/X11/Clipboard/SelectionEffects.h"
#include "Platform/Desktop/X11/Clipboard/SelectionReader.h"
#include "Platform/Foundation/LogSink.h"
#include "Platform/Input/Pasteboard.h"

#include <future>

namespace platform::desktop {

// The clipboard of an X session, on a connection and a thread of its own. Reading behind a posted copy waits
// for the copy, clearing behind a posted paste for the paste, each within a bound. Once the connection
// breaks, all operations end at once with nothing, and so they do when the pasteboard ends; what it then
// holds for the user, or has not yet put back, goes to the clipboard manager.
class DesktopPasteboard : public Pasteboard {
public:
    // Throws DisplayError.
    DesktopPasteboard(PostedKeys& postedKeys, LogSink log);
    ~DesktopPasteboard() override;

    Task<std::vector<PasteboardItem>> pasteboardItems() override;
    Task<void> clearContents() override;
    Task<void> writeObjects(std::vector<PasteboardItem> items) override;
    Task<std::optional<std::string>> string() override;
    Task<void> setString(std::string text) override;

private:
    // An operation under way on the thread.
    class Operation;

    Task<void> handOver(std::promise<void> done);
    void leaveToNobodySoon();

    PostedKeys& postedKeys;
    const LogSink log;
    SelectionThread thread;
    SelectionWatch watch;
    SelectionReader reader;
    SelectionEffects effects;
    SelectionOwner owner;

    // Of the contents last read as a whole: whether there were none, and their text.
    bool wasEmpty = false;
    std::optional<std::string> lastText;
    // The contents themselves, until they are put back.
    std::shared_ptr<const SelectionContent> borrowed;
    int operations = 0;
};

} // namespace platform::desktop
