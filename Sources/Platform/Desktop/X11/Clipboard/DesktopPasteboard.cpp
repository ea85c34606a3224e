#include "Platform/Desktop/X11/Clipboard/DesktopPasteboard.h"

namespace platform::desktop {
namespace {

using namespace std::chrono_literals;

// What is on the clipboard in passing asks clipboard managers to stay out of their histories, and by being
// there at all keeps those that never leave a clipboard empty from filling it in the midst of a gesture.
const SelectionForm inPassing{"x-kde-passwordManagerHint", "x-kde-passwordManagerHint", 8, "secret"};

// A clipboard is cleared for a key that is posted at once, or for good.
constexpr auto keyDelay = 100ms;

} // namespace

DesktopPasteboard::DesktopPasteboard(PostedKeys& keys)
    : postedKeys(keys),
      watch(thread),
      reader(thread, watch),
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
    if (!borrowed.forms.empty())
        co_await owner.own(Tenancy::keeping, std::move(borrowed));
    co_await owner.handOver();
    done.set_value();
}

Task<std::vector<PasteboardItem>> DesktopPasteboard::pasteboardItems() {
    co_await ignoreCancellation();
    co_await resumeOn(thread);
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
    borrowed = std::move(content);
    co_return items;
}

Task<void> DesktopPasteboard::clearContents() {
    co_await ignoreCancellation();
    co_await resumeOn(thread);
    co_await effects.pasteDone();
    // Nobody need hear of an owner for that.
    if (watch.owner() == XCB_NONE) {
        effects.termBegan();
        co_return;
    }
    SelectionContent nothing{{inPassing}};
    co_await owner.own(Tenancy::empty, std::move(nothing));
    if (wasEmpty)
        leaveToNobodySoon();
}

Task<void> DesktopPasteboard::writeObjects(std::vector<PasteboardItem> items) {
    co_await ignoreCancellation();
    co_await resumeOn(thread);
    co_await effects.pasteDone();
    auto content = SelectionContent::of(std::move(items));
    co_await owner.own(Tenancy::keeping, std::move(content));
    borrowed = {};
}

Task<void> DesktopPasteboard::setString(std::string text) {
    co_await ignoreCancellation();
    co_await resumeOn(thread);
    co_await effects.pasteDone();
    auto content = SelectionContent::of(std::move(text));
    content.forms.push_back(inPassing);
    co_await owner.own(Tenancy::paste, std::move(content));
}

Task<std::optional<std::string>> DesktopPasteboard::string() {
    co_await ignoreCancellation();
    co_await resumeOn(thread);
    auto outcome = co_await effects.copyDone();
    if (const auto* content = owner.content())
        co_return content->text();
    bool copiedByOther = outcome == CopyOutcome::notCopied;
    // The front application's is of an earlier copy; a clipboard manager's was there before.
    if (copiedByOther && (effects.isOwnedByFrontApplication() || effects.isKeptByManager()))
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
