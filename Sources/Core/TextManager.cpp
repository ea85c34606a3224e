#include "Core/TextManager.h"

#include "Platform/Foundation/Sleep.h"
#include "Platform/Host.h"
#include "Platform/Input/PasteboardError.h"

namespace lumarin {
namespace {

using namespace std::chrono_literals;
using platform::EventType;
using platform::Host;
using platform::Task;

constexpr platform::Duration keystrokeDelay = 50ms;
constexpr platform::Duration retryDelay = 100ms;
constexpr int maxRetries = 3;

Task<void> postKey(int keyCode, std::uint64_t flags) {
    auto& keyboard = Host::current().keyboard();
    co_await keyboard.post({EventType::keyDown, keyCode, flags});
    co_await keyboard.post({EventType::keyUp, keyCode, flags});
}

} // namespace

Task<std::string> TextManager::readCurrentText() {
    co_await platform::resumeOn(Host::current().backgroundExecutor());
    std::string text;
    co_await keepingClipboard(TextManagerError::Case::readFailed,
                              [this, &text]() -> Task<void> { text = co_await copyFocusedText(); });
    if (text.empty())
        throw TextManagerError(TextManagerError::Case::emptyText);
    co_return text;
}

Task<void> TextManager::writeText(std::string text) {
    co_await platform::resumeOn(Host::current().backgroundExecutor());
    co_await keepingClipboard(TextManagerError::Case::writeFailed,
                              [this, &text]() -> Task<void> { return pasteOver(std::move(text)); });
}

// Whatever ends the work, a cancellation too, the clipboard is put back before it goes on.
template <typename Work>
Task<void> TextManager::keepingClipboard(TextManagerError::Case unsaved, Work work) {
    try {
        co_await clipboardGuard.save();
    } catch (const platform::PasteboardError&) {
        throw TextManagerError(unsaved);
    }
    std::exception_ptr failure;
    try {
        co_await work();
    } catch (...) {
        failure = std::current_exception();
    }
    co_await platform::ignoreCancellation();
    co_await clipboardGuard.restore();
    if (failure)
        std::rethrow_exception(failure);
}

Task<std::string> TextManager::copyFocusedText() {
    auto text = co_await copyAttempt();
    wasPartialSelection = !text.empty();
    if (wasPartialSelection)
        co_return text;
    co_await simulateKeyCombo(KeyCode::a, platform::flag::command);
    co_await platform::sleep(keystrokeDelay);
    for (int attempt = 0; attempt < maxRetries && text.empty(); ++attempt) {
        text = co_await copyAttempt();
        if (text.empty())
            co_await platform::sleep(retryDelay);
    }
    // The selection collapses to the end of the text.
    co_await postKey(platform::key::rightArrow, 0);
    co_await platform::sleep(keystrokeDelay);
    co_return text;
}

// The clipboard is emptied first: what was copied before is never taken for the field's text.
Task<std::string> TextManager::copyAttempt() {
    auto& pasteboard = Host::current().generalPasteboard();
    co_await pasteboard.clearContents();
    co_await simulateKeyCombo(KeyCode::c, platform::flag::command);
    co_await platform::sleep(keystrokeDelay);
    auto copied = co_await pasteboard.string();
    co_return copied.value_or("");
}

Task<void> TextManager::pasteOver(std::string text) {
    if (!wasPartialSelection) {
        co_await simulateKeyCombo(KeyCode::a, platform::flag::command);
        co_await platform::sleep(keystrokeDelay);
    }
    auto& pasteboard = Host::current().generalPasteboard();
    co_await pasteboard.clearContents();
    bool isReady = true;
    try {
        co_await pasteboard.setString(std::move(text));
    } catch (const platform::PasteboardError&) {
        isReady = false;
    }
    if (!isReady) {
        // The field is left as it was: the next key would go over all of it.
        if (!wasPartialSelection)
            co_await postKey(platform::key::rightArrow, 0);
        throw TextManagerError(TextManagerError::Case::writeFailed);
    }
    co_await simulateKeyCombo(KeyCode::v, platform::flag::command);
    co_await platform::sleep(keystrokeDelay);
}

Task<void> TextManager::simulateKeyCombo(KeyCode key, std::uint64_t flags) {
    return postKey(static_cast<int>(key), flags);
}

} // namespace lumarin
