#include "Platform/Desktop/X11/Clipboard/DesktopPasteboard.h"

#include "Platform/Desktop/Clipboard/InPassing.h"
#include "Platform/Input/PasteboardError.h"

namespace platform::desktop {
namespace {

using namespace std::chrono_literals;

// A clipboard is cleared for a key that is posted at once, or for good.
constexpr auto keyDelay = 100ms;

// Where a program wants the clipboard for itself, it takes it as soon as it hears of the new owner.
constexpr auto untouchedTime = 3ms;

// More than any operation takes.
constexpr auto operationLimit = 10s;

std::shared_ptr<const SelectionContent> shared(SelectionContent content) {
    return std::make_shared<const SelectionContent>(std::move(content));
}

} // namespace

// Counted, so that the end of the pasteboard does not come into the midst of it.
class DesktopPasteboard::Operation {
public:
    explicit Operation(int& number) : count(number) { ++count; }
    ~Operation() { --count; }
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;

private:
    int& count;
};

DesktopPasteboard::DesktopPasteboard(PostedKeys& keys, LogSink sink)
    : postedKeys(keys),
      log(std::move(sink)),
      watch(thread),
      reader(thread, watch, log),
      effects(thread, watch, keys),
      owner(thread, effects) {
    thread.start([this](const xcb_generic_event_t& event) {
        auto change = watch.handle(event);
        bool byOthers = change && !owner.isOwn(change->owner);
        reader.handle(event);
        owner.handle(event, change);
        effects.handle(event, byOthers ? change : std::nullopt);
    });
    postedKeys.observe([this] { thread.post([this] { effects.keyTyped(); }); });
}

DesktopPasteboard::~DesktopPasteboard() {
    postedKeys.observe(nullptr);
    std::promise<void> done;
    auto handedOver = done.get_future();
    spawn(thread, handOver(std::move(done)));
    handedOver.wait();
    thread.stop();
}

Task<void> DesktopPasteboard::handOver(std::promise<void> done) {
    co_await thread.until([this] { return operations == 0; }, operationLimit);
    if (borrowed)
        co_await owner.own(Tenancy::keeping, std::move(borrowed));
    co_await owner.handOver();
    done.set_value();
}

Task<std::vector<PasteboardItem>> DesktopPasteboard::pasteboardItems() {
    co_await ignoreCancellation();
    co_await resumeOn(thread);
    const Operation operation(operations);
    co_await effects.gestureBegins();
    SelectionContent content;
    if (!owner.content())
        content = co_await reader.content();
    else if (owner.tenancy() != Tenancy::empty)
        content = *owner.content();
    wasEmpty = content.forms.empty();
    lastText = content.text();
    std::vector<PasteboardItem> items;
    if (!wasEmpty)
        items.push_back(content.item());
    borrowed = wasEmpty ? nullptr : shared(std::move(content));
    co_return items;
}

Task<void> DesktopPasteboard::clearContents() {
    co_await ignoreCancellation();
    co_await resumeOn(thread);
    const Operation operation(operations);
    co_await effects.pasteDone();
    // Nobody need hear of an owner for that.
    if (watch.owner() == XCB_NONE) {
        effects.termBegan();
        co_return;
    }
    // A copy takes the clipboard from whoever has it, and what was there before is known.
    SelectionContent nothing{{inPassing}};
    if (!co_await owner.own(Tenancy::empty, shared(std::move(nothing))))
        effects.termBegan();
    if (wasEmpty)
        leaveToNobodySoon();
}

Task<void> DesktopPasteboard::writeObjects(std::vector<PasteboardItem> items) {
    co_await ignoreCancellation();
    co_await resumeOn(thread);
    const Operation operation(operations);
    co_await effects.pasteDone();
    lastText.reset();
    // What another program has put there by then is newer.
    borrowed.reset();
    if (!co_await owner.own(Tenancy::keeping, shared(SelectionContent::of(std::move(items)))))
        log("[Clipboard] Another program keeps the clipboard; what was on it before could not be put back");
}

Task<void> DesktopPasteboard::setString(std::string text) {
    co_await ignoreCancellation();
    co_await resumeOn(thread);
    const Operation operation(operations);
    co_await effects.pasteDone();
    auto content = SelectionContent::of(std::move(text));
    content.forms.push_back(inPassing);
    const bool isOwned = co_await owner.own(Tenancy::paste, shared(std::move(content)));
    const auto holds = [&] { return isOwned && owner.holdsForPaste(); };
    for (int touched = -1; owner.isContested() && holds() && touched != owner.reclaims();) {
        touched = owner.reclaims();
        co_await thread.until([&] { return !holds() || touched != owner.reclaims(); }, untouchedTime);
    }
    if (holds() || thread.isOver())
        co_return;
    constexpr const char* reason = "Another program keeps the clipboard; nothing is pasted";
    log(std::string("[Clipboard] ") + reason);
    throw PasteboardError(reason);
}

Task<std::optional<std::string>> DesktopPasteboard::string() {
    co_await ignoreCancellation();
    co_await resumeOn(thread);
    const Operation operation(operations);
    auto outcome = co_await effects.copyDone();
    if (const auto* content = owner.content())
        co_return content->text();
    bool copiedByOther = outcome == CopyOutcome::notCopied;
    // The front application's is of an earlier copy; a clipboard manager's was there before.
    if (copiedByOther && (effects.isOfFrontApplication(watch.owner()) || effects.isKeptByManager()))
        co_return std::nullopt;
    auto text = co_await reader.text();
    if (copiedByOther && text == lastText)
        co_return std::nullopt;
    co_return text;
}

// An empty clipboard that is put back belongs to nobody, as it did before.
void DesktopPasteboard::leaveToNobodySoon() {
    auto lastKey = postedKeys.latest();
    thread.postAfter(keyDelay, [this, since = owner.ownedSince(), number = lastKey ? lastKey->number : 0] {
        auto key = postedKeys.latest();
        if (owner.tenancy() == Tenancy::empty && (key ? key->number : 0) == number)
            owner.disown(since);
    });
}

} // namespace platform::desktop
