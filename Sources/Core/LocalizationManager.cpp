#include "Core/LocalizationManager.h"

#include "Platform/Host.h"

namespace lumarin {

using platform::Host;

LocalizationManager& LocalizationManager::shared() {
    static LocalizationManager instance;
    return instance;
}

LocalizationManager::Language LocalizationManager::currentLanguage() const {
    auto stored = Host::current().userDefaults().string(storageKey);
    return fromRawValue<Language>(stored.value_or("system")).value_or(Language::system);
}

void LocalizationManager::setLanguage(Language language) {
    Host::current().userDefaults().set(storageKey, std::string(rawValue(language)));
    Host::current().notificationCenter().post(languageChanged);
}

std::string LocalizationManager::effectiveBundleName() const {
    switch (currentLanguage()) {
    case Language::zh:
        return "zh-Hans";
    case Language::en:
        return "en";
    case Language::system:
        break;
    }
    auto preferred = Host::current().preferredLanguages();
    return !preferred.empty() && preferred.front().starts_with("zh") ? "zh-Hans" : "en";
}

std::string LocalizationManager::localized(const std::string& key, const std::string& table) const {
    constexpr const char* missing = "__MISSING__";
    if (auto bundle = lprojBundle(effectiveBundleName()))
        if (auto text = bundle->localizedString(key, missing, table); text != missing)
            return text;
    if (auto bundle = lprojBundle("en"))
        return bundle->localizedString(key, key, table);
    return key;
}

const platform::Bundle* LocalizationManager::lprojBundle(const std::string& name) const {
    const auto& main = Host::current().mainBundle();
    if (auto found = main.pathForResource(name, "lproj"))
        return &main.bundleAt(*found);
    // A bare executable beside a folder of resources, or one level above it.
    auto folder = Host::current().directories().executable.parent_path();
    for (const auto& base : {folder, folder.parent_path()}) {
        auto candidate = base / "Resources" / (name + ".lproj");
        std::error_code ignored;
        if (std::filesystem::exists(candidate / "Localizable.strings", ignored))
            return &main.bundleAt(candidate);
    }
    return nullptr;
}

std::string localized(const std::string& key) {
    return LocalizationManager::shared().localized(key);
}

} // namespace lumarin
