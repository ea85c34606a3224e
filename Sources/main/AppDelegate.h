#pragma once

#include "Core/TranslationStateMachine.h"
#include "Platform/Foundation/Observers.h"
#include "Platform/Kit/Application.h"
#include "Platform/Updates/StandardUpdaterController.h"
#include "UI/OnboardingWindow.h"

#include <memory>
#include <optional>
#include <vector>

namespace lumarin {

// Wires the program together when it has launched, and stays for as long as it runs. Main thread; to be owned
// by a shared_ptr.
class AppDelegate : public platform::ApplicationDelegate,
                    public platform::UpdaterDelegate,
                    public std::enable_shared_from_this<AppDelegate> {
public:
    void applicationDidFinishLaunching() override;
    void applicationDidReopen() override;
    platform::StatusItem* statusItem() override { return statusItem_.get(); }

    void updaterDidFindValidUpdate(const platform::AppcastItem& update) override;
    void updaterDidNotFindUpdate(const std::string& reason) override;

private:
    void setupEditMenu();
    void subscribe();
    void updateIcon(TranslationState state);

    // Builds the status menu anew from all that is chosen.
    void setupMenu();
    platform::MenuItem modeItem();
    platform::MenuItem languageItem();
    platform::MenuItem styleItem();
    platform::MenuItem uiLanguageItem();

    // What the items do. One that carries nothing of use changes nothing.
    using MenuAction = void (AppDelegate::*)(const platform::MenuItem&);
    void changeMode(const platform::MenuItem& chosen);
    void changeLanguage(const platform::MenuItem& chosen);
    void changeStyle(const platform::MenuItem& chosen);
    void changeUILanguage(const platform::MenuItem& chosen);
    void toggleLoginItem(const platform::MenuItem& chosen);
    void checkForUpdates(const platform::MenuItem& chosen);
    void generateDiagnostics(const platform::MenuItem& chosen);

    // An item that does that for as long as there is a delegate.
    platform::MenuItem makeItem(std::string title, MenuAction action, std::any representedObject = {});

    void registerLoginItem();
    // Opens the first steps a little later, if the permission is missing: at each launch anew.
    void scheduleOnboarding();
    void showOnboarding();

    std::unique_ptr<platform::StatusItem> statusItem_;
    const std::shared_ptr<TranslationStateMachine> stateMachine = std::make_shared<TranslationStateMachine>();
    std::vector<platform::Subscription> cancellables;
    // Whether the last check found an update.
    bool updateAvailable = false;
    // From the first check on.
    std::optional<platform::StandardUpdaterController> updaterController;
    std::shared_ptr<OnboardingWindow> onboarding;
};

} // namespace lumarin
