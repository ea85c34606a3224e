#include "Core/LocalizationManager.h"
#include "main/AppDelegate.h"

namespace lumarin {

void AppDelegate::checkForUpdates(const platform::MenuItem& /*chosen*/) {
    if (!updaterController)
        updaterController.emplace(weak_from_this(), [](const std::string& key) {
            return LocalizationManager::shared().localized(key, "Updates");
        });
    updaterController->checkForUpdates();
}

void AppDelegate::updaterDidFindValidUpdate(const platform::AppcastItem& /*update*/) {
    updateAvailable = true;
    setupMenu();
}

// A mark in the menu goes when that is next built.
void AppDelegate::updaterDidNotFindUpdate(const std::string& /*reason*/) {
    updateAvailable = false;
}

} // namespace lumarin
