#pragma once

#include "Platform/Desktop/X11/Clipboard/Patience.h"
#include "Platform/Desktop/X11/Clipboard/SelectionOwner.h"
#include "Platform/Desktop/X11/Clipboard/WindowPing.h"

#include <deque>
#include <set>

namespace platform::desktop {

// Whose doing the clipboard is after a posted copy.
enum class CopyOutcome { nothingPosted, copied, notCopied };

// Waits until a posted copy or paste has had its effect, within a bound, and tells the effects of the front
// application from what others do with the clipboard. The pasteboard's thread.
class SelectionEffects : public SelectionOwner::Observer {
public:
    SelectionEffects(SelectionThread& thread, const SelectionWatch& watch, PostedKeys& postedKeys);

    // A combination has been typed.
    void keyTyped();

    // Until the last combination, if it was a copy, has put something on the clipboard or is seen to put
    // nothing.
    Task<CopyOutcome> copyDone();

    // Until the last combination, if it was a paste, has fetched the text that is there for it.
    Task<void> pasteDone();

    // Until no copy of an earlier gesture is under way.
    Task<void> gestureBegins();

    // Whether the clipboard's present owner is a program that keeps clipboards.
    bool isKeptByManager() const;

    void handle(const xcb_generic_event_t& event, const std::optional<OwnerChange>& change);

    void termBegan() override;
    void requested(xcb_window_t requestor, std::shared_ptr<const SelectionTransfer> transfer) override;
    bool isLateForPaste(xcb_window_t requestor) override;
    bool areOfOneProgram(xcb_window_t one, xcb_window_t other) const override {
        return clients.areOfOneProgram(one, other);
    }
    bool isOfFrontApplication(xcb_window_t owner) const override;
    bool isLateCopy(xcb_window_t newOwner) override;

private:
    using Inquiry = std::shared_ptr<const WorkInquiry>;

    struct Copy {
        PostedKey key;
        Inquiry inquiry;
        std::optional<bool> copied;
    };
    struct Fetch {
        xcb_window_t requestor;
        Moment time;
        std::shared_ptr<const SelectionTransfer> transfer;
    };

    bool frontHasCopied(xcb_window_t front) const;
    std::optional<Moment> pasteEnd(const PostedKey& key, const Inquiry& inquiry) const;

    SelectionThread& thread;
    const XConnection& x;
    const SelectionWatch& watch;
    PostedKeys& postedKeys;
    ClientIdentity clients;
    WindowPing ping;

    std::optional<Copy> lastCopy;
    // A copy of another selection that may still come; what its application puts on the clipboard before it
    // has worked it off is not what was asked for since.
    Inquiry overdue;
    // New owners since the term began.
    std::vector<xcb_window_t> owners;

    std::uint64_t lastPaste = 0;
    Inquiry latePaste;
    Moment termStart;
    std::deque<Fetch> fetches;
    // Connections that look at the clipboard whenever it changes.
    std::set<std::uint32_t> watchers;

    Patience patience;
    std::uint64_t events = 0;
};

} // namespace platform::desktop
