#pragma once

#include "Platform/Desktop/X11/Clipboard/SelectionTransfers.h"
#include "Platform/Desktop/X11/Clipboard/SelectionWatch.h"

namespace platform::desktop {

// Why the program owns the clipboard: to leave nothing on it, for a text to be pasted, or to keep the user's.
enum class Tenancy { empty, paste, keeping };

// Owns the clipboard and answers those who ask for it. The pasteboard's thread.
class SelectionOwner {
public:
    // Learns what becomes of a tenancy, and has a say in it.
    class Observer {
    public:
        virtual ~Observer() = default;
        virtual void termBegan() = 0;
        // Somebody asks for the clipboard's bytes, or (no transfer) for anything else.
        virtual void requested(xcb_window_t requestor, std::shared_ptr<const SelectionTransfer> transfer) = 0;
        // Whether the requestor still does what the last text to be pasted was there for.
        virtual bool isLateForPaste(xcb_window_t requestor) = 0;
        virtual bool areOfOneProgram(xcb_window_t one, xcb_window_t other) const = 0;
        // Whether it belongs to the application that the last combination went to.
        virtual bool isOfFrontApplication(xcb_window_t owner) const = 0;
        // Whether a program that took the clipboard did so for a copy that is over for the user.
        virtual bool isLateCopy(xcb_window_t newOwner) = 0;
    };

    SelectionOwner(SelectionThread& thread, Observer& observer);

    // Takes the clipboard; ends when everybody has been told, or at once when what is owned is emptied. False
    // where other programs are faster each time.
    Task<bool> own(Tenancy tenancy, std::shared_ptr<const SelectionContent> content);
    // Whether what a paste fetches now is the text that was put there for it: from here, or from a program
    // that has fetched it before it took the clipboard over.
    bool holdsForPaste() const;
    // How often it had to be taken back from others since it was taken.
    int reclaims() const { return current ? current->reclaims : 0; }
    // Whether there is a program that takes the clipboard for itself in the midst of a gesture.
    bool isContested() const { return contested; }

    // Leaves the clipboard to nobody, if it is still owned for the same reason as at `since`.
    void disown(xcb_timestamp_t since);

    // Leaves what is kept for the user to the clipboard manager, if there is one.
    Task<void> handOver();

    // What is owned now, if anything.
    const SelectionContent* content() const { return current ? current->content.get() : nullptr; }
    Tenancy tenancy() const { return current ? current->tenancy : Tenancy::empty; }
    xcb_timestamp_t ownedSince() const { return current ? current->since : 0; }

    bool isOwn(xcb_window_t candidate) const { return candidate == window; }

    void handle(const xcb_generic_event_t& event, const std::optional<OwnerChange>& change);

private:
    struct Term {
        Tenancy tenancy;
        xcb_timestamp_t since;
        std::shared_ptr<const SelectionContent> content;
        // Who has been given its bytes, each by one of its windows.
        std::vector<xcb_window_t> served = {};
        // How often it was taken back from others.
        int reclaims = 0;
        // Once it is over.
        xcb_timestamp_t until = 0;
    };

    void ownerChanged(const OwnerChange& change);
    bool isUncalledFor(const OwnerChange& change) const;
    bool isToBeTakenBack(const OwnerChange& change) const;
    bool isServed(xcb_window_t owner) const;
    void endTerm(xcb_timestamp_t time);
    void answer(const xcb_selection_request_event_t& request);
    Term* termFor(const xcb_selection_request_event_t& request);
    bool convert(Term& term, xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property);
    bool convertEach(Term& term, xcb_window_t requestor, xcb_atom_t property);
    void putTargets(const Term& term, xcb_window_t requestor, xcb_atom_t property);

    SelectionThread& thread;
    const XConnection& x;
    Observer& observer;
    SelectionTransfers transfers;
    xcb_window_t window;
    xcb_atom_t clipboard;

    std::optional<Term> wanted;
    std::optional<Term> current;
    // The last text to be pasted, for a paste that was begun before its term was over.
    std::optional<Term> pasted;
    // Of the last term for a paste: it went to a program that has the text.
    bool isInheritedWithText = false;
    bool contested = false;
    bool handedOver = false;
};

} // namespace platform::desktop
