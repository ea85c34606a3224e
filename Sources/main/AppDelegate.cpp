#include "main/AppDelegate.h"

#include "Core/LocalizationManager.h"
#include "Core/Logger.h"
#include "Platform/Host.h"

#include <array>

namespace lumarin {

using platform::Host;

namespace {

// A panel is asked whether it is there, and may be busy with a login.
constexpr platform::Duration panelAnswers = std::chrono::seconds(1);

platform::Symbol symbolFor(TranslationState state) {
    constexpr std::array names{
        "character.bubble", "text.magnifyingglass", "arrow.triangle.2.circlepath", "eye",
        "checkmark.circle", "arrow.uturn.backward"};
    return {names[static_cast<std::size_t>(state)], "Lumarin"};
}

} // namespace

void AppDelegate::applicationDidFinishLaunching() {
    LumLog::log("applicationDidFinishLaunching");
    setupEditMenu();
    statusItem_ = Host::current().statusBar().makeStatusItem();
    statusItem_->setImage(symbolFor(TranslationState::idle));
    setupMenu();
    stateMachine->setup();
    subscribe();
    registerLoginItem();
    Host::current().mainRunLoop().postAfter(panelAnswers, [self = weak_from_this()] {
        if (auto delegate = self.lock(); delegate && !delegate->statusItem_->isVisible())
            LumLog::log("This desktop has no status bar yet; the icon appears when there is one");
    });
    scheduleOnboarding();
    LumLog::log("App started");
}

void AppDelegate::applicationDidReopen() {
    // An open menu would get the keys that are typed for a field.
    if (statusItem_ && stateMachine->state.value() == TranslationState::idle)
        statusItem_->performClick();
}

void AppDelegate::subscribe() {
    const auto self = weak_from_this();
    auto rebuild = [self] {
        if (auto delegate = self.lock())
            delegate->setupMenu();
    };
    cancellables.push_back(stateMachine->state.subscribe([self](TranslationState state) {
        if (auto delegate = self.lock())
            delegate->updateIcon(state);
    }));
    cancellables.push_back(stateMachine->currentStyle.subscribe([rebuild](auto) { rebuild(); }));
    cancellables.push_back(stateMachine->currentLanguage.subscribe([rebuild](auto) { rebuild(); }));
    cancellables.push_back(stateMachine->currentMode.subscribe([rebuild](auto) { rebuild(); }));
    cancellables.push_back(
        Host::current().notificationCenter().observe(LocalizationManager::languageChanged, rebuild));
}

void AppDelegate::updateIcon(TranslationState state) {
    statusItem_->setImage(symbolFor(state));
}

// Never seen, but its key equivalents are those of the program's own windows.
void AppDelegate::setupEditMenu() {
    auto editing = std::make_shared<platform::Menu>();
    editing->title = "Edit";
    auto add = [&](const char* title, const char* command, const char* keyEquivalent) {
        platform::MenuItem item;
        item.title = title;
        item.command = command;
        item.keyEquivalent = keyEquivalent;
        editing->items.push_back(std::move(item));
    };
    add("Cut", "cut:", "x");
    add("Copy", "copy:", "c");
    add("Paste", "paste:", "v");
    add("Select All", "selectAll:", "a");

    auto mainMenu = std::make_shared<platform::Menu>();
    mainMenu->items.resize(2);
    mainMenu->items[1].submenu = std::move(editing);
    Host::current().application().mainMenu = std::move(mainMenu);
}

} // namespace lumarin
