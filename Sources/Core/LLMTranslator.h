#pragma once

#include "Data/TerminologyDB.h"
#include "Models/TargetLanguage.h"
#include "Models/TranslationState.h"
#include "Platform/Foundation/HTTPSession.h"

#include <functional>
#include <memory>
#include <string>

namespace lumarin {

// The client of the service's streaming endpoint. Its calls keep nothing between them and may overlap; it
// must outlive them.
class LLMTranslator {
public:
    // Takes the whole translation so far, not the newest piece, on the translator's own thread.
    using ChunkHandler = std::function<void(const std::string&)>;

    LLMTranslator();

    // Opens a connection to the service ahead of the first request. Returns at once.
    void warmup();

    // The whole translation, trimmed. Throws TranslationError, the session's errors, or CancellationError.
    platform::Task<std::string> translateStream(std::string text, StylePreset style,
                                                TargetLanguage targetLanguage, ChunkHandler onChunk);

private:
    TerminologyDB terminologyDB;
    std::shared_ptr<platform::HTTPSession> session;
};

} // namespace lumarin
