#include "Platform/Desktop/Wayland/Clipboard/DataControlPasteboard.h"

#include "Platform/Desktop/Clipboard/InPassing.h"
#include "Platform/Input/PasteboardError.h"

#include <algorithm>

namespace platform::desktop {
namespace {

using namespace std::chrono_literals;

// An application that has nothing to copy is silent about it.
constexpr auto copyLimit = 250ms;
// A copy that was overdue may come in the last one's stead, and the last one behind it: at once from a
// program that was busy before, and some time later from one that is busy before each key, which is then slow
// with this one too.
constexpr auto burst = 40ms;
constexpr auto promptAnswer = 100ms;
constexpr auto slowAnswer = 1250ms;
// An application may be busy for a second before it fetches a text.
constexpr auto pasteLimit = 1250ms;
// Who has fetched a text may have been a clipboard manager.
constexpr auto strangerGrace = 150ms;

constexpr auto contentLimit = 5000ms;
// Of all forms together: they are kept until they are put back.
constexpr std::size_t mostBytes = std::size_t{512} << 20U;
// Programs that come one after another while their contents are read.
constexpr int mostChanges = 3;
// How often the clipboard is taken back from a program that wants it for itself.
constexpr int mostReclaims = 3;
// A clipboard is cleared for a key that is posted at once, or for good.
constexpr auto keyDelay = 100ms;

bool isText(const std::string& type) {
    return std::ranges::count(textTargets, type) != 0 || type == "text/plain" || type == "TEXT";
}

} // namespace

DataControlPasteboard::DataControlPasteboard(PostedKeys& keys, LogSink sink)
    : postedKeys(keys), log(std::move(sink)) {
    thread.start();
}

DataControlPasteboard::~DataControlPasteboard() {
    thread.stop();
}

Task<std::vector<PasteboardItem>> DataControlPasteboard::pasteboardItems() {
    co_await ignoreCancellation();
    co_await resumeOn(thread);
    isCopyOverdue = false;
    SelectionContent content;
    if (const auto* own = clipboard.content(); !own)
        content = co_await readAll();
    else if (tenancy != Tenancy::empty)
        content = *own;
    wasEmpty = content.forms.empty();
    std::vector<PasteboardItem> items;
    if (!wasEmpty)
        items.push_back(content.item());
    co_return items;
}

// Never a mixture of what two programs have.
Task<SelectionContent> DataControlPasteboard::readAll() {
    const auto deadline = std::chrono::steady_clock::now() + contentLimit;
    for (int attempt = 0; attempt < mostChanges; ++attempt) {
        const auto changes = clipboard.changes();
        auto types = clipboard.offeredTypes();
        if (types.empty())
            co_return SelectionContent();
        auto content = co_await formsOf(std::move(types), deadline);
        if (clipboard.changes() == changes && !content.forms.empty())
            co_return content;
        if (thread.isOver())
            co_return SelectionContent();
        // Its program has ended and left nothing.
        if (clipboard.offeredTypes().empty())
            co_return SelectionContent();
    }
    throw PasteboardError("The program that owns the clipboard does not hand out what is on it");
}

// Text first; in the order in which they are offered.
Task<SelectionContent> DataControlPasteboard::formsOf(std::vector<std::string> types, Moment deadline) {
    const auto changes = clipboard.changes();
    std::vector<std::string> order = types;
    std::stable_partition(order.begin(), order.end(), isText);
    std::size_t room = mostBytes;
    SelectionContent found;
    std::vector<std::string> missing;
    for (const auto& type : order) {
        if (found.form(type))
            continue;
        auto bytes = co_await clipboard.read(type, room, deadline);
        if (clipboard.changes() != changes)
            co_return SelectionContent();
        if (!bytes) {
            missing.push_back(type);
            continue;
        }
        room -= bytes->size();
        found.forms.push_back({type, type, 8, std::move(*bytes)});
    }
    for (const auto& type : missing) {
        if (!found.hasKindOf(type) && !thread.isOver() && !clipboard.offeredTypes().empty())
            throw PasteboardError("The program that owns the clipboard does not hand out what is on it");
        log("[Clipboard] Too slow or too big to be kept: " + type);
    }
    std::ranges::stable_sort(found.forms, {}, [&](const SelectionForm& form) {
        return std::ranges::find(types, form.target) - types.begin();
    });
    co_return found;
}

Task<void> DataControlPasteboard::take(Tenancy purpose, SelectionContent content) {
    tenancy = purpose;
    auto shared = std::make_shared<const SelectionContent>(std::move(content));
    co_await clipboard.take(std::move(shared));
    termStart = std::chrono::steady_clock::now();
    changesBefore = clipboard.changes();
}

Task<void> DataControlPasteboard::clearContents() {
    co_await ignoreCancellation();
    co_await resumeOn(thread);
    co_await pasteDone();
    // Keys behind a copy change what the next one copies.
    const auto key = postedKeys.latest();
    if (key && key->effect == ClipboardEffect::copy && clipboard.changes() == changesBefore)
        isCopyOverdue = true;
    SelectionContent nothing;
    nothing.forms.push_back(inPassing);
    co_await take(Tenancy::empty, std::move(nothing));
    if (wasEmpty)
        leaveEmptySoon();
}

Task<void> DataControlPasteboard::writeObjects(std::vector<PasteboardItem> items) {
    co_await ignoreCancellation();
    co_await resumeOn(thread);
    co_await pasteDone();
    auto content = SelectionContent::of(std::move(items));
    for (int attempt = 0; attempt <= mostReclaims; ++attempt) {
        co_await take(Tenancy::keeping, content);
        if (clipboard.content() || thread.isOver())
            co_return;
    }
    log("[Clipboard] Another program keeps the clipboard; what was on it before could not be put back");
}

Task<void> DataControlPasteboard::setString(std::string text) {
    co_await ignoreCancellation();
    co_await resumeOn(thread);
    co_await pasteDone();
    auto content = SelectionContent::of(std::move(text));
    content.forms.push_back(inPassing);
    for (int attempt = 0; attempt <= mostReclaims; ++attempt) {
        co_await take(Tenancy::paste, content);
        if (clipboard.content() || thread.isOver())
            co_return;
    }
    constexpr const char* reason = "Another program keeps the clipboard; nothing is pasted";
    log(std::string("[Clipboard] ") + reason);
    throw PasteboardError(reason);
}

Task<std::optional<std::string>> DataControlPasteboard::string() {
    co_await ignoreCancellation();
    co_await resumeOn(thread);
    co_await copyDone();
    if (const auto* own = clipboard.content())
        co_return own->text();
    co_return co_await readText();
}

Task<std::optional<std::string>> DataControlPasteboard::readText() {
    const auto types = clipboard.offeredTypes();
    const auto deadline = std::chrono::steady_clock::now() + contentLimit;
    // Plain text without a word on its encoding is in UTF-8 here.
    for (const std::string type : {"text/plain;charset=utf-8", "UTF8_STRING", "text/plain", "STRING"}) {
        if (std::ranges::count(types, type) == 0)
            continue;
        auto bytes = co_await clipboard.read(type, mostBytes, deadline);
        if (bytes)
            co_return textOf(type, std::move(*bytes));
    }
    co_return std::nullopt;
}

// Until the last combination, if it was a copy, has put something on the clipboard or may be taken to have
// put nothing there.
Task<void> DataControlPasteboard::copyDone() {
    const auto key = postedKeys.latest();
    if (!key || key->effect != ClipboardEffect::copy || key->number == lastCopy)
        co_return;
    lastCopy = key->number;
    co_await thread.until([&] { return clipboard.changes() != changesBefore; }, key->time + copyLimit);
    if (!isCopyOverdue || clipboard.changes() == changesBefore)
        co_return;
    const bool isPrompt = std::chrono::steady_clock::now() < key->time + promptAnswer;
    while (true) {
        const auto seen = clipboard.changes();
        const bool another = co_await thread.until([&] { return clipboard.changes() != seen; },
                                                   isPrompt ? Duration(burst) : Duration(slowAnswer));
        if (!another)
            break;
    }
}

// Until the last combination, if it was a paste, has fetched the text that is there for it.
Task<void> DataControlPasteboard::pasteDone() {
    const auto key = postedKeys.latest();
    if (!key || key->effect != ClipboardEffect::paste || key->number == lastPaste || key->time < termStart)
        co_return;
    lastPaste = key->number;
    const auto isFetched = [&] {
        return clipboard.fetches().underWay == 0 && clipboard.fetches().ended > key->time;
    };
    // A program that has taken the text over is fetched from, unseen.
    const auto isTakenOver = [&] { return clipboard.content() == nullptr; };
    co_await thread.until([&] { return isFetched() || isTakenOver(); }, key->time + pasteLimit);
    while (isFetched() || isTakenOver()) {
        const auto seen = clipboard.fetches().begun;
        const bool another =
            co_await thread.until([&] { return clipboard.fetches().begun != seen; }, strangerGrace);
        if (!another)
            break;
        co_await thread.until(isFetched, pasteLimit);
    }
}

// An empty clipboard that is put back belongs to nobody, as it did before.
void DataControlPasteboard::leaveEmptySoon() {
    const auto key = postedKeys.latest();
    thread.postAfter(keyDelay, [this, since = termStart, number = key ? key->number : 0] {
        const auto last = postedKeys.latest();
        if (tenancy == Tenancy::empty && clipboard.content() && termStart == since
            && (last ? last->number : 0) == number)
            spawn(thread, clipboard.leaveEmpty());
    });
}

} // namespace platform::desktop
