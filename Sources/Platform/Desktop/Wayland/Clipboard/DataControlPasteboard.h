#pragma once

#include "Platform/Desktop/Typing/PostedKeys.h"
#include "Platform/Desktop/Wayland/Clipboard/DataControl.h"
#include "Platform/Foundation/LogSink.h"
#include "Platform/Input/Pasteboard.h"

namespace platform::desktop {

// The clipboard of a Wayland session, on a connection and a thread of its own. Nobody tells there what an
// application does with a key: reading behind a posted copy waits for something new, clearing behind a posted
// paste for somebody who fetches the text, each within a bound. Once the connection breaks all operations end
// at once with nothing.
class DataControlPasteboard : public Pasteboard {
public:
    // Throws WaylandError.
    DataControlPasteboard(PostedKeys& postedKeys, LogSink log);
    ~DataControlPasteboard() override;

    Task<std::vector<PasteboardItem>> pasteboardItems() override;
    Task<void> clearContents() override;
    Task<void> writeObjects(std::vector<PasteboardItem> items) override;
    Task<std::optional<std::string>> string() override;
    Task<void> setString(std::string text) override;

private:
    // What is there from here: nothing of the user's, a text to be pasted, or the user's own.
    enum class Tenancy { empty, paste, keeping };

    Task<SelectionContent> readAll();
    Task<SelectionContent> formsOf(std::vector<std::string> types, Moment deadline);
    Task<std::optional<std::string>> readText();
    Task<void> take(Tenancy purpose, SelectionContent content);
    Task<void> copyDone();
    Task<void> pasteDone();
    void leaveEmptySoon();

    PostedKeys& postedKeys;
    const LogSink log;
    CompositorThread thread;
    DataControl clipboard{thread};

    Tenancy tenancy = Tenancy::empty;
    Moment termStart;
    // Changes by others when the term began.
    unsigned changesBefore = 0;
    // Of the contents last read as a whole.
    bool wasEmpty = false;
    std::uint64_t lastCopy = 0;
    std::uint64_t lastPaste = 0;
    // A copy before the last one has had no effect so far.
    bool isCopyOverdue = false;
};

} // namespace platform::desktop
