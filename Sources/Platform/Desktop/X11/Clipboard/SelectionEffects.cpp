#include "Platform/Desktop/X11/Clipboard/SelectionEffects.h"

#include <algorithm>

namespace platform::desktop {
namespace {

using namespace std::chrono_literals;

// A copy goes through another connection of the application, or another process of its input method.
constexpr auto copyGrace = 1ms;
// Some applications fetch a text twice.
constexpr auto fetchGrace = 30ms;
// For an application that lets another program fetch, or pastes what another program has taken over.
constexpr auto strangerGrace = 150ms;
constexpr std::size_t mostFetches = 64;

bool isAnswered(const std::shared_ptr<const WorkInquiry>& inquiry) {
    return inquiry && inquiry->state == WorkInquiry::State::answered;
}

bool isOpen(const std::shared_ptr<const WorkInquiry>& inquiry) {
    return inquiry && inquiry->state == WorkInquiry::State::open;
}

} // namespace

SelectionEffects::SelectionEffects(SelectionThread& ownThread, const SelectionWatch& ownerWatch,
                                   PostedKeys& keys)
    : thread(ownThread),
      x(thread.x()),
      watch(ownerWatch),
      postedKeys(keys),
      clients(x),
      ping(thread, clients) {}

Task<void> SelectionEffects::gestureBegins() {
    if (lastCopy && isOpen(lastCopy->inquiry))
        co_await thread.until([this] { return !isOpen(lastCopy->inquiry); }, patience.with(lastCopy->key));
    patience.gestureBegins(postedKeys.latest(), std::chrono::steady_clock::now());
}

// Asks at once, so that the answer mostly is there by the time it is waited for; and also where nothing will
// be waited for: what the application does before it answers is still this copy.
void SelectionEffects::keyTyped() {
    auto key = postedKeys.latest();
    if (key && key->effect == ClipboardEffect::copy && (!lastCopy || lastCopy->key.number != key->number))
        lastCopy = Copy{*key, ping.ask(key->window), std::nullopt};
}

Task<CopyOutcome> SelectionEffects::copyDone() {
    auto key = postedKeys.latest();
    if (!key || key->effect != ClipboardEffect::copy)
        co_return CopyOutcome::nothingPosted;
    keyTyped();
    if (lastCopy->copied)
        co_return *lastCopy->copied ? CopyOutcome::copied : CopyOutcome::notCopied;

    const auto limit = std::chrono::steady_clock::now() + patience.with(*key);
    const auto inquiry = lastCopy->inquiry;
    bool copied = frontHasCopied(key->window);
    while (!copied) {
        const auto seen = owners.size();
        bool happened =
            co_await thread.until([&] { return owners.size() != seen || isAnswered(inquiry); }, limit);
        if (isAnswered(inquiry))
            co_await thread.until([&] { return owners.size() != seen; }, inquiry->answeredAt + copyGrace);
        copied = frontHasCopied(key->window);
        if (!happened || isAnswered(inquiry))
            break;
    }
    if (copied || isAnswered(inquiry))
        patience.answered();
    else
        patience.keptSilent();
    lastCopy->copied = copied;
    co_return copied ? CopyOutcome::copied : CopyOutcome::notCopied;
}

bool SelectionEffects::frontHasCopied(xcb_window_t front) const {
    return std::ranges::any_of(owners, [&](xcb_window_t owner) {
        return front == XCB_NONE || clients.areOfOneProgram(owner, front);
    });
}

void SelectionEffects::termBegan() {
    owners.clear();
    fetches.clear();
    termStart = std::chrono::steady_clock::now();
    // Keys behind a copy change what the next one copies.
    auto key = postedKeys.latest();
    if (lastCopy && isOpen(lastCopy->inquiry) && key && key->number != lastCopy->key.number)
        overdue = lastCopy->inquiry;
}

Task<void> SelectionEffects::pasteDone() {
    auto key = postedKeys.latest();
    if (!key || key->effect != ClipboardEffect::paste || key->number == lastPaste || key->time < termStart)
        co_return;
    lastPaste = key->number;
    auto limit = std::chrono::steady_clock::now() + patience.with(*key);
    auto inquiry = latePaste = ping.ask(key->window);
    if (inquiry) {
        co_await thread.until([&] { return isAnswered(inquiry); }, limit);
        if (!isAnswered(inquiry)) {
            patience.keptSilent();
            co_return;
        }
        patience.answered();
        // It may have handled the key and fetch the text later.
        limit = std::chrono::steady_clock::now() + Patience::forKey;
    }
    while (std::chrono::steady_clock::now() < limit) {
        auto end = std::min(limit, pasteEnd(*key, inquiry).value_or(limit));
        const auto seen = events;
        bool changed = co_await thread.until([&] { return events != seen; }, end);
        if (!changed)
            break;
    }
}

// When the paste can be taken for done if nothing more happens.
std::optional<Moment> SelectionEffects::pasteEnd(const PostedKey& key, const Inquiry& inquiry) const {
    std::optional<Moment> byFront;
    std::optional<Moment> byStranger;
    for (const auto& fetch : fetches) {
        if (fetch.time < key.time)
            continue;
        if (clients.areOfOneProgram(fetch.requestor, key.window)) {
            if (!fetch.transfer->finished)
                return std::nullopt;
            byFront = fetch.time + fetchGrace;
        } else if (!watchers.contains(clients.connectionOf(fetch.requestor))) {
            byStranger = fetch.time + strangerGrace;
        }
    }
    if (byFront)
        return byFront;
    if (!isAnswered(inquiry))
        return std::nullopt;
    // Another program has taken the clipboard over, and the application fetches the text there.
    if (!owners.empty())
        return inquiry->answeredAt + strangerGrace;
    if (byStranger)
        return std::max(*byStranger, inquiry->answeredAt + strangerGrace);
    return std::nullopt;
}

void SelectionEffects::handle(const xcb_generic_event_t& event, const std::optional<OwnerChange>& change) {
    ++events;
    ping.handle(event);
    if (!change || change->owner == XCB_NONE)
        return;
    if (isOpen(overdue) && clients.areOfOneProgram(change->owner, overdue->window))
        return;
    constexpr std::size_t mostOwners = 64;
    if (owners.size() < mostOwners)
        owners.push_back(change->owner);
}

void SelectionEffects::requested(xcb_window_t requestor, std::shared_ptr<const SelectionTransfer> transfer) {
    auto key = postedKeys.latest();
    bool pasteIsPosted = key && key->effect == ClipboardEffect::paste && key->time >= termStart;
    if (!pasteIsPosted)
        watchers.insert(clients.connectionOf(requestor));
    else if (transfer && fetches.size() < mostFetches)
        fetches.push_back({requestor, std::chrono::steady_clock::now(), std::move(transfer)});
}

bool SelectionEffects::isLateForPaste(xcb_window_t requestor) {
    return isOpen(latePaste) && clients.areOfOneProgram(requestor, latePaste->window);
}

bool SelectionEffects::isOfFrontApplication(xcb_window_t owner) const {
    auto key = postedKeys.latest();
    return key && clients.areOfOneProgram(owner, key->window);
}

bool SelectionEffects::isLateCopy(xcb_window_t newOwner) {
    if (!lastCopy || !clients.areOfOneProgram(newOwner, lastCopy->key.window))
        return false;
    if (lastCopy->inquiry)
        return isOpen(lastCopy->inquiry);
    // What the user has done since may be a copy of their own.
    return lastCopy->copied == false && postedKeys.lastUsersAct() < lastCopy->key.time
           && std::chrono::steady_clock::now()
                  < lastCopy->key.time + Patience::forKey * static_cast<int>(Patience::mostKeys);
}

bool SelectionEffects::isKeptByManager() const {
    auto manager =
        x.reply(xcb_get_selection_owner_reply, xcb_get_selection_owner(x, x.atom("CLIPBOARD_MANAGER")));
    return manager && clients.areOfOneProgram(watch.owner(), manager->owner);
}

} // namespace platform::desktop
