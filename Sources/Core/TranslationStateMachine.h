#pragma once

#include "Core/FreeTranslator.h"
#include "Core/HotkeyListener.h"
#include "Core/LLMTranslator.h"
#include "Core/TextManager.h"
#include "Models/TargetLanguage.h"
#include "Models/TranslationState.h"
#include "Platform/Foundation/Published.h"
#include "Platform/Foundation/Task.h"
#include "Platform/Input/Workspace.h"
#include "UI/TranslationHUD.h"

#include <memory>
#include <optional>
#include <string>

namespace lumarin {

// Turns the Fn gesture into a translation session: press reads and translates, release injects, Escape
// abandons. There is one session at a time, and everything is decided on the main thread. To be owned by a
// shared_ptr: a session under way keeps it alive.
class TranslationStateMachine : public std::enable_shared_from_this<TranslationStateMachine> {
public:
    platform::Published<TranslationState> state{TranslationState::idle};
    platform::Published<StylePreset> currentStyle{StylePreset::casual};
    platform::Published<TargetLanguage> currentLanguage{TargetLanguage::english};
    platform::Published<TranslationMode> currentMode{TranslationMode::free};
    platform::Published<bool> isProcessing{false};

    // Loads the settings and begins to listen for Fn. Once.
    void setup();

private:
    using Self = std::shared_ptr<TranslationStateMachine>;

    void fnDown();
    void fnUp();
    void confirm();
    void reset();
    void cancel();
    void startEscListener();
    void stopEscListener();

    static platform::Task<void> runSession(Self self, unsigned number);
    static platform::Task<void> translate(Self self, unsigned number);
    static platform::Task<void> confirmWhenDone(Self self, unsigned number);
    static platform::Task<void> inject(Self self);

    // Whether the session of that number still goes on; what comes late from another must not touch this one.
    bool isCurrent(unsigned number) const { return number == session; }
    void schedule(void (TranslationStateMachine::*operation)());
    LLMTranslator::ChunkHandler chunkHandler(unsigned number);

    std::string originalText;
    std::string translatedText;
    std::optional<platform::RunningApplication> sourceApp;
    TextManager textManager;
    LLMTranslator translator;
    FreeTranslator freeTranslator;
    HotkeyListener hotkeyListener;
    TranslationHUD hud;
    std::optional<platform::TaskHandle> translationTask;
    std::unique_ptr<platform::EventMonitor> escMonitor;
    unsigned session = 0;
    // The state stays `preview` while the translation is injected; a second release must not inject it again.
    bool isInjecting = false;
};

} // namespace lumarin
