#pragma once

#include "Models/RawValue.h"
#include "Platform/Foundation/Bundle.h"

#include <string>

namespace lumarin {

// The texts a person reads, in the interface language they chose. Lookups may come from any thread; the
// choice is made on the main thread.
class LocalizationManager {
public:
    enum class Language { system, zh, en };

    // Posted without an object whenever the language is chosen, also when it is the same again.
    static constexpr const char* languageChanged = "Lumarin.languageChanged";

    static LocalizationManager& shared();

    Language currentLanguage() const;
    void setLanguage(Language language);

    // The table in use: "zh-Hans" or "en".
    std::string effectiveBundleName() const;

    // The text of a key in one of the tables: in the language in use, else in English, else the key itself.
    std::string localized(const std::string& key, const std::string& table = "Localizable") const;

private:
    LocalizationManager() = default;

    const platform::Bundle* lprojBundle(const std::string& name) const;

    const std::string storageKey = "Lumarin.language";
};

template <>
struct RawValues<LocalizationManager::Language> {
    static constexpr auto texts = std::to_array<std::string_view>({"system", "zh", "en"});
};

// A text of the program's own, in the interface language of the moment.
std::string localized(const std::string& key);

} // namespace lumarin
