#include "main/Launch.h"

#include "Core/LocalizationManager.h"
#include "Core/Logger.h"
#include "Platform/Foundation/FileManager.h"
#include "Platform/Host.h"
#include "main/AppDelegate.h"

namespace lumarin {

void beginLog() {
    platform::files::replace(LumLog::logURL(), "=== Lumarin starting ===\n");
}

void runApp() {
    // A log that has not begun does not begin in the middle.
    std::error_code ignored;
    if (std::filesystem::exists(LumLog::logURL(), ignored))
        platform::files::append(LumLog::logURL(), "runApp called\n");
    auto& application = platform::Host::current().application();
    // The application refers to its delegate weakly.
    auto delegate = std::make_shared<AppDelegate>();
    application.delegate = delegate;
    application.activationPolicy = platform::ActivationPolicy::accessory;
    // The host may have something to say before anything is launched.
    application.localization = [] { return LocalizationManager::shared().effectiveBundleName(); };
    application.run();
}

} // namespace lumarin
