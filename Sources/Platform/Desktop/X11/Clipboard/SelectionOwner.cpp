#include "Platform/Desktop/X11/Clipboard/SelectionOwner.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace platform::desktop {
namespace {

using namespace std::chrono_literals;

constexpr auto ownLimit = 1s;
constexpr int mostClaims = 5;
// Two programs that both insist would go on for ever.
constexpr int mostReclaims = 3;
constexpr std::size_t mostServed = 64;
constexpr auto handOverLimit = 3s;

// The server's time wraps around.
bool isEarlier(xcb_timestamp_t one, xcb_timestamp_t other) {
    return static_cast<std::int32_t>(one - other) < 0;
}

} // namespace

SelectionOwner::SelectionOwner(SelectionThread& ownThread, Observer& termObserver)
    : thread(ownThread),
      x(thread.x()),
      observer(termObserver),
      transfers(thread),
      window(x.makeHiddenWindow()),
      clipboard(x.atom("CLIPBOARD")) {}

Task<bool> SelectionOwner::own(Tenancy tenancy, std::shared_ptr<const SelectionContent> content) {
    for (int claim = 0; claim < mostClaims; ++claim) {
        const auto time = co_await thread.serverTime();
        Term term{tenancy, time, content};
        // Nobody is told that it is empty in passing. Programs that look at each new clipboard would have two
        // to look at at once, and some then hold on to what they learn last of the older: nothing to paste.
        if (tenancy == Tenancy::empty && current) {
            endTerm(time);
            current = std::move(term);
            observer.termBegan();
            co_return true;
        }
        wanted = std::move(term);
        xcb_set_selection_owner(x, window, clipboard, time);
        // The server passes over a claim that is older than another program's, without a word.
        const auto owner = x.reply(xcb_get_selection_owner_reply, xcb_get_selection_owner(x, clipboard));
        // Told by the server's notice, which stands in order among the notices of other owners and the
        // requests.
        if (owner && owner->owner == window)
            co_await thread.until([this] { return !wanted; }, ownLimit);
        if (!std::exchange(wanted, std::nullopt))
            co_return true;
    }
    co_return false;
}

bool SelectionOwner::holdsForPaste() const {
    return current ? current->tenancy == Tenancy::paste : isInheritedWithText;
}

void SelectionOwner::disown(xcb_timestamp_t since) {
    if (current && current->since == since)
        xcb_set_selection_owner(x, XCB_NONE, clipboard, since);
}

Task<void> SelectionOwner::handOver() {
    auto manager = x.atom("CLIPBOARD_MANAGER");
    auto present = x.reply(xcb_get_selection_owner_reply, xcb_get_selection_owner(x, manager));
    if (!current || current->tenancy != Tenancy::keeping || !present || present->owner == XCB_NONE)
        co_return;
    auto property = x.atom("LUMARIN_SAVE_TARGETS");
    std::vector<std::uint32_t> targets;
    for (const auto& form : current->content->forms)
        targets.push_back(x.atom(form.target));
    x.setProperty(window, property, XCB_ATOM_ATOM, targets);
    handedOver = false;
    xcb_convert_selection(x, window, manager, x.atom("SAVE_TARGETS"), property, current->since);
    co_await thread.until([this] { return handedOver; }, handOverLimit);
}

void SelectionOwner::handle(const xcb_generic_event_t& event, const std::optional<OwnerChange>& change) {
    if (change)
        ownerChanged(*change);
    switch (event.response_type & 0x7F) {
    case XCB_SELECTION_REQUEST:
        answer(reinterpret_cast<const xcb_selection_request_event_t&>(event));
        return;
    case XCB_SELECTION_NOTIFY:
        handedOver |= reinterpret_cast<const xcb_selection_notify_event_t&>(event).requestor == window;
        return;
    default:
        transfers.handle(event);
    }
}

void SelectionOwner::ownerChanged(const OwnerChange& change) {
    contested |= isUncalledFor(change);
    if (change.owner == window) {
        if (wanted && wanted->since == change.since) {
            endTerm(change.since);
            current = std::exchange(wanted, std::nullopt);
            observer.termBegan();
        } else if (current) {
            current->since = change.since;
        }
    } else if (isToBeTakenBack(change)) {
        ++current->reclaims;
        xcb_set_selection_owner(x, window, clipboard, change.time);
    } else {
        isInheritedWithText = isServed(change.owner);
        endTerm(change.time);
    }
}

// Taken while it holds nothing for a copy to come, or a text to be pasted, without having looked at that.
bool SelectionOwner::isUncalledFor(const OwnerChange& change) const {
    if (!current || change.owner == XCB_NONE || change.owner == window)
        return false;
    if (current->tenancy == Tenancy::empty)
        return !observer.isOfFrontApplication(change.owner);
    return current->tenancy == Tenancy::paste && !isServed(change.owner);
}

// Another program's content would be pasted over the user's text.
bool SelectionOwner::isToBeTakenBack(const OwnerChange& change) const {
    if (!current || wanted || change.owner == XCB_NONE || current->reclaims >= mostReclaims)
        return false;
    if (current->tenancy == Tenancy::keeping)
        return observer.isLateCopy(change.owner);
    return current->tenancy == Tenancy::paste && isUncalledFor(change);
}

// Whether its program has been given what is owned now.
bool SelectionOwner::isServed(xcb_window_t owner) const {
    return current && std::ranges::any_of(current->served, [&](xcb_window_t served) {
               return observer.areOfOneProgram(served, owner);
           });
}

void SelectionOwner::endTerm(xcb_timestamp_t time) {
    if (current && current->tenancy == Tenancy::paste) {
        pasted = std::move(current);
        pasted->until = time;
    }
    current.reset();
}

// What was asked for by an act of the user is what the clipboard held at the time of that act.
SelectionOwner::Term* SelectionOwner::termFor(const xcb_selection_request_event_t& request) {
    if (!current || request.selection != clipboard)
        return nullptr;
    if (pasted && current->tenancy != Tenancy::paste && observer.isLateForPaste(request.requestor))
        return &*pasted;
    if (request.time == XCB_CURRENT_TIME || !isEarlier(request.time, current->since))
        return &*current;
    bool begunEarlier =
        pasted && !isEarlier(request.time, pasted->since) && isEarlier(request.time, pasted->until);
    return begunEarlier ? &*pasted : nullptr;
}

void SelectionOwner::answer(const xcb_selection_request_event_t& request) {
    // Programs of old name no property and expect the target's name.
    auto property = request.property != XCB_ATOM_NONE ? request.property : request.target;
    auto* term = termFor(request);
    bool converted = term && convert(*term, request.requestor, request.target, property);

    xcb_selection_notify_event_t notice{};
    notice.response_type = XCB_SELECTION_NOTIFY;
    notice.time = request.time;
    notice.requestor = request.requestor;
    notice.selection = request.selection;
    notice.target = request.target;
    notice.property = converted ? property : xcb_atom_t{XCB_ATOM_NONE};
    // An event is always sent as 32 bytes.
    char bytes[32] = {};
    std::memcpy(bytes, &notice, sizeof notice);
    xcb_send_event(x, 0, request.requestor, XCB_EVENT_MASK_NO_EVENT, bytes);
}

bool SelectionOwner::convert(Term& term, xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property) {
    auto name = x.nameOf(target);
    if (const auto* form = term.content->form(name)) {
        if (std::ranges::find(term.served, requestor) == term.served.end() && term.served.size() < mostServed)
            term.served.push_back(requestor);
        observer.requested(requestor, transfers.send(term.content, *form, requestor, property));
        return true;
    }
    if (name == "MULTIPLE")
        return convertEach(term, requestor, property);
    observer.requested(requestor, nullptr);
    if (name == "TARGETS") {
        putTargets(term, requestor, property);
    } else if (name == "TIMESTAMP") {
        const std::uint32_t since[] = {term.since};
        x.setProperty(requestor, property, XCB_ATOM_INTEGER, since);
    } else if (name == "SAVE_TARGETS") {
        // A side effect that is none here; its answer is an empty one.
        x.setProperty(requestor, property, x.atom("NULL"), std::span<const std::uint32_t>());
    } else {
        return false;
    }
    return true;
}

void SelectionOwner::putTargets(const Term& term, xcb_window_t requestor, xcb_atom_t property) {
    std::vector<std::uint32_t> targets;
    for (const char* name : {"TARGETS", "MULTIPLE", "TIMESTAMP", "SAVE_TARGETS"})
        targets.push_back(x.atom(name));
    for (const auto& form : term.content->forms)
        targets.push_back(x.atom(form.target));
    x.setProperty(requestor, property, XCB_ATOM_ATOM, targets);
}

// The property lists pairs of a target and the property for it; a pair that can't be had loses its property.
bool SelectionOwner::convertEach(Term& term, xcb_window_t requestor, xcb_atom_t property) {
    auto list = x.property(requestor, property);
    if (!list || list->format != 32)
        return false;
    auto pairs = list->values();
    auto multiple = x.atom("MULTIPLE");
    for (std::size_t at = 0; at + 1 < pairs.size(); at += 2) {
        bool possible = pairs[at] != multiple && pairs[at + 1] != XCB_ATOM_NONE;
        if (!possible || !convert(term, requestor, pairs[at], pairs[at + 1]))
            pairs[at + 1] = XCB_ATOM_NONE;
    }
    x.setProperty(requestor, property, list->type, pairs);
    return true;
}

} // namespace platform::desktop
