#pragma once

#include "Models/TargetLanguage.h"
#include "Models/TranslationState.h"

#include <filesystem>
#include <map>
#include <string>

namespace lumarin {

// The three translation settings in the user's settings file. Main thread. Nothing here fails: what cannot be
// read is as if it were not there, and what cannot be written is not written.
class KeychainManager {
public:
    KeychainManager() = delete;

    // The settings file; its folder is created.
    static std::filesystem::path configURL();

    static std::map<std::string, std::string> readConfig();
    static void writeConfig(const std::map<std::string, std::string>& config);

    static TargetLanguage loadTargetLanguage();
    static TranslationMode loadMode();
    static StylePreset loadStyle();

    // Store one setting and keep whatever else stands in the file.
    static void saveTargetLanguage(TargetLanguage language);
    static void saveMode(TranslationMode mode);
    static void saveStyle(StylePreset style);
};

} // namespace lumarin
