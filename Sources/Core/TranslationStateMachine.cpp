#include "Core/TranslationStateMachine.h"

#include "Core/GrowingText.h"
#include "Core/LocalizedError.h"
#include "Core/Logger.h"
#include "Data/KeychainManager.h"
#include "Platform/Foundation/Sleep.h"
#include "Platform/Foundation/Text.h"
#include "Platform/Host.h"

namespace lumarin {
namespace {

using namespace std::chrono_literals;
using platform::Host;
using platform::Task;

constexpr platform::Duration lookAgainAfter = 100ms;
constexpr platform::Duration activationDelay = 200ms;
constexpr platform::Duration errorDisplay = 2s;

std::string quotedBeginning(const std::string& text) {
    return "\"" + platform::text::prefix(text, 50) + "\"";
}

std::string nameOf(const std::optional<platform::RunningApplication>& application, const char* fallback) {
    return application ? application->localizedName.value_or(fallback) : fallback;
}

std::string nameOf(TranslationState state) {
    return std::string(caseName(state));
}

} // namespace

void TranslationStateMachine::setup() {
    LumLog::log("[SM] setup()");
    currentLanguage = KeychainManager::loadTargetLanguage();
    currentMode = KeychainManager::loadMode();
    currentStyle = KeychainManager::loadStyle();
    if (currentMode.value() == TranslationMode::ai)
        translator.warmup();
    hotkeyListener.onFnDown = [weak = weak_from_this()] {
        if (auto self = weak.lock())
            self->schedule(&TranslationStateMachine::fnDown);
    };
    hotkeyListener.onFnUp = [weak = weak_from_this()] {
        if (auto self = weak.lock())
            self->schedule(&TranslationStateMachine::fnUp);
    };
    hotkeyListener.start();
}

void TranslationStateMachine::schedule(void (TranslationStateMachine::*operation)()) {
    Host::current().mainRunLoop().post([weak = weak_from_this(), operation] {
        if (auto self = weak.lock())
            (*self.*operation)();
    });
}

void TranslationStateMachine::fnDown() {
    if (state.value() != TranslationState::idle) {
        LumLog::log("[SM] fnDown ignored, state=" + nameOf(state));
        return;
    }
    sourceApp = Host::current().workspace().frontmostApplication();
    LumLog::log("[SM] fnDown — source app: " + nameOf(sourceApp, "nil"));
    state = TranslationState::reading;
    isProcessing = true;
    translationTask = spawn(Host::current().mainRunLoop(), runSession(shared_from_this(), ++session));
}

Task<void> TranslationStateMachine::runSession(Self self, unsigned number) {
    bool wasCancelled = false;
    std::optional<std::string> description;
    try {
        co_await translate(self, number);
    } catch (const platform::CancellationError&) {
        wasCancelled = true;
    } catch (const std::exception& error) {
        LumLog::log(std::string("[SM] Error: ") + error.what());
        description = localizedDescription(error);
    }
    if (wasCancelled)
        LumLog::log("[SM] Cancelled");
    if (description && self->isCurrent(number)) {
        self->hud.showError(*description);
        co_await platform::sleepUnlessCancelled(errorDisplay);
    }
    if ((wasCancelled || description) && self->isCurrent(number))
        self->reset();
}

Task<void> TranslationStateMachine::translate(Self self, unsigned number) {
    LumLog::log("[SM] Reading text...");
    auto text = co_await self->textManager.readCurrentText();
    LumLog::log("[SM] Read: " + quotedBeginning(text) + " ("
                + std::to_string(platform::text::characterCount(text)) + " chars)");
    if (text.empty()) {
        LumLog::log("[SM] Empty, back to idle");
        self->reset();
        co_return;
    }
    self->originalText = text;
    self->state = TranslationState::translating;
    self->hud.show(text);
    self->startEscListener();
    TranslationMode mode = self->currentMode;
    TargetLanguage language = self->currentLanguage;
    LumLog::log("[SM] Translating (" + std::string(rawValue(mode)) + " → " + std::string(rawValue(language))
                + ")...");
    std::string result;
    if (mode == TranslationMode::free) {
        result = co_await self->freeTranslator.translate(text, language);
        if (self->isCurrent(number))
            self->hud.update(result);
    } else {
        result = co_await self->translator.translateStream(text, self->currentStyle, language,
                                                           self->chunkHandler(number));
    }
    co_await platform::checkCancellation();
    self->translatedText = result;
    LumLog::log("[SM] Done: " + quotedBeginning(result));
    self->state = TranslationState::preview;
    self->isProcessing = false;
    self->hud.showDone();
}

LLMTranslator::ChunkHandler TranslationStateMachine::chunkHandler(unsigned number) {
    return [weak = weak_from_this(), number, text = std::make_shared<GrowingText>()](const auto& soFar) {
        if (!text->grow(soFar))
            return;
        Host::current().mainRunLoop().post([weak, number, text] {
            if (auto self = weak.lock(); self && self->isCurrent(number))
                self->hud.update(text->take());
        });
    };
}

void TranslationStateMachine::fnUp() {
    LumLog::log("[SM] fnUp — state=" + nameOf(state));
    switch (state.value()) {
    case TranslationState::translating:
        LumLog::log("[SM] Still translating, will inject when done");
        [[fallthrough]];
    case TranslationState::reading:
        spawn(Host::current().mainRunLoop(), confirmWhenDone(shared_from_this(), session));
        break;
    case TranslationState::preview:
        confirm();
        break;
    default:
        break;
    }
}

Task<void> TranslationStateMachine::confirmWhenDone(Self self, unsigned number) {
    for (auto awaited : {TranslationState::reading, TranslationState::translating})
        while (self->isCurrent(number) && self->state.value() == awaited)
            co_await platform::sleepUnlessCancelled(lookAgainAfter);
    if (self->isCurrent(number) && self->state.value() == TranslationState::preview)
        self->confirm();
}

void TranslationStateMachine::confirm() {
    if (isInjecting)
        return;
    if (translatedText.empty()) {
        reset();
        return;
    }
    LumLog::log("[SM] Confirming — injecting into " + nameOf(sourceApp, "?"));
    hud.dismiss();
    stopEscListener();
    isInjecting = true;
    spawn(Host::current().mainRunLoop(), inject(shared_from_this()));
}

Task<void> TranslationStateMachine::inject(Self self) {
    if (self->sourceApp) {
        Host::current().workspace().activate(*self->sourceApp);
        co_await platform::sleepUnlessCancelled(activationDelay);
    }
    try {
        co_await self->textManager.writeText(self->translatedText);
    } catch (const std::exception&) {
        // The field is as the user sees it; there is nothing more to tell them.
    }
    LumLog::log("[SM] Injected ✓");
    self->isInjecting = false;
    self->state = TranslationState::idle;
    self->isProcessing = false;
}

void TranslationStateMachine::reset() {
    ++session;
    hud.dismiss();
    stopEscListener();
    state = TranslationState::idle;
    isProcessing = false;
    originalText.clear();
    translatedText.clear();
}

void TranslationStateMachine::cancel() {
    // A release may have come between the key and this: then it is too late.
    if (!escMonitor)
        return;
    LumLog::log("[SM] Cancel");
    if (translationTask)
        translationTask->cancel();
    translationTask.reset();
    reset();
}

void TranslationStateMachine::startEscListener() {
    escMonitor = Host::current().keyboard().addGlobalMonitor(
        maskOf(platform::EventType::keyDown), [weak = weak_from_this()](const platform::KeyEvent& event) {
            if (auto self = weak.lock(); self && event.keyCode == platform::key::escape)
                self->schedule(&TranslationStateMachine::cancel);
        });
}

void TranslationStateMachine::stopEscListener() {
    escMonitor.reset();
}

} // namespace lumarin
