#include "Platform/Desktop/Session/HostTexts.h"

#include "Platform/Desktop/Session/SessionFacts.h"

namespace platform::desktop {

std::string HostTexts::text(const std::string& key) const {
    std::string language = preferredLanguageTags().front().starts_with("zh") ? "zh-Hans" : "en";
    if (application.localization)
        language = application.localization();
    return textIn(language, key, textIn("en", key, key));
}

std::string HostTexts::textIn(const std::string& language, const std::string& key,
                              const std::string& ifMissing) const {
    const auto folder = bundle.pathForResource(language, "lproj");
    return folder ? bundle.bundleAt(*folder).localizedString(key, ifMissing, "Host") : ifMissing;
}

} // namespace platform::desktop
