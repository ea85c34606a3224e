#pragma once

#include "Data/TerminologyDB.h"
#include "Models/TargetLanguage.h"
#include "Models/TranslationState.h"

#include <string>

namespace lumarin {

// The instructions that make the service's language model a translation engine into the target language, in
// the style's tone and with the glossary terms given.
std::string buildSystemPrompt(StylePreset style, const TermDictionary& terms, TargetLanguage targetLanguage);

} // namespace lumarin
