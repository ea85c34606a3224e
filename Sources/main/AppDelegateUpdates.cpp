#include "Core/LocalizationManager.h"
#include "Core/LocalizedError.h"
#include "main/AppDelegate.h"

namespace lumarin {

void AppDelegate::checkForUpdates(const platform::MenuItem& /*chosen*/) {
    if (!updaterController)
        updaterController.emplace(weak_from_this(),
                                  platform::StandardUpdaterController::Texts{
                                      [](const std::string& key) {
                                          return LocalizationManager::shared().localized(key, "Updates");
                                      },
                                      localizedDescription});
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
