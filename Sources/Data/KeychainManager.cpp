#include "Data/KeychainManager.h"

#include "Data/DataDirectory.h"
#include "Platform/Foundation/FileManager.h"
#include "Platform/Foundation/Json.h"

#include <optional>
#include <span>
#include <string_view>

namespace lumarin {
namespace {

namespace files = platform::files;

constexpr const char* targetLanguageKey = "targetLang";
constexpr const char* modeKey = "mode";
constexpr const char* styleKey = "style";

// How earlier versions spelt a value, and how it is spelt now.
struct LegacyValue {
    std::string_view stored;
    std::string_view current;
};

constexpr LegacyValue legacyTargetLanguage[] = {
    {"英语", "english"},    {"日语", "japanese"},     {"韩语", "korean"},
    {"法语", "french"},     {"西班牙语", "spanish"},  {"德语", "german"},
    {"俄语", "russian"},    {"阿拉伯语", "arabic"},   {"葡萄牙语", "portuguese"},
    {"English", "english"}, {"Japanese", "japanese"}, {"Korean", "korean"},
    {"French", "french"},   {"Spanish", "spanish"},   {"German", "german"},
    {"Russian", "russian"}, {"Arabic", "arabic"},     {"Portuguese", "portuguese"},
};

constexpr LegacyValue legacyMode[] = {
    {"免费", "free"},
    {"AI", "ai"},
    {"直接翻译", "free"},
    {"优雅翻译", "ai"},
};

template <typename Setting>
Setting load(const char* key, std::span<const LegacyValue> legacy, Setting fallback) {
    auto config = KeychainManager::readConfig();
    auto found = config.find(key);
    if (found == config.end())
        return fallback;
    std::string_view value = found->second;
    for (const auto& old : legacy)
        if (old.stored == found->second)
            value = old.current;
    return fromRawValue<Setting>(value).value_or(fallback);
}

void save(const char* key, std::string_view rawValue) {
    auto config = KeychainManager::readConfig();
    config.insert_or_assign(key, rawValue);
    KeychainManager::writeConfig(config);
}

} // namespace

std::filesystem::path KeychainManager::configURL() {
    return createDataDirectory() / "config.json";
}

std::map<std::string, std::string> KeychainManager::readConfig() {
    auto bytes = files::contents(configURL());
    auto config = bytes ? platform::decodeStringDictionary(*bytes) : std::nullopt;
    return config.value_or(std::map<std::string, std::string>());
}

void KeychainManager::writeConfig(const std::map<std::string, std::string>& config) {
    try {
        files::writeAtomically(configURL(), platform::encodeStringDictionary(config));
    } catch (const std::exception&) {
        // The setting still holds for this run.
    }
}

TargetLanguage KeychainManager::loadTargetLanguage() {
    return load(targetLanguageKey, legacyTargetLanguage, TargetLanguage::english);
}

TranslationMode KeychainManager::loadMode() {
    return load(modeKey, legacyMode, TranslationMode::ai);
}

StylePreset KeychainManager::loadStyle() {
    return load(styleKey, {}, StylePreset::casual);
}

void KeychainManager::saveTargetLanguage(TargetLanguage language) {
    save(targetLanguageKey, rawValue(language));
}

void KeychainManager::saveMode(TranslationMode mode) {
    save(modeKey, rawValue(mode));
}

void KeychainManager::saveStyle(StylePreset style) {
    save(styleKey, rawValue(style));
}

} // namespace lumarin
