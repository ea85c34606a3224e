#include "Core/Diagnostics.h"
#include "Core/LocalizationManager.h"
#include "Data/KeychainManager.h"
#include "Platform/Foundation/Text.h"
#include "Platform/Host.h"
#include "main/AppDelegate.h"

namespace lumarin {

using platform::Host;
using platform::Menu;
using platform::MenuItem;

namespace {

// The name of a case: of a mode, a language or a style.
template <typename Enumeration>
std::string nameOf(const std::string& prefix, Enumeration value) {
    return localized(prefix + std::string(rawValue(value)));
}

std::string nameOf(StylePreset style) {
    constexpr std::array emoji{"👔", "😎", "😊", "⚡"};
    return std::string(emoji[static_cast<std::size_t>(style)]) + " " + nameOf("style.", style);
}

MenuItem separator() {
    MenuItem item;
    item.isSeparator = true;
    return item;
}

MenuItem remark(std::string title) {
    MenuItem item;
    item.title = std::move(title);
    item.isEnabled = false;
    return item;
}

MenuItem quitItem() {
    MenuItem item;
    item.title = localized("menu.quit");
    item.command = "terminate:";
    item.keyEquivalent = "q";
    return item;
}

MenuItem submenu(std::string title, std::vector<MenuItem> items) {
    MenuItem item;
    item.title = std::move(title);
    item.submenu = std::make_shared<Menu>(Menu{{}, std::move(items)});
    return item;
}

// The items of an enumeration's cases, with a mark at the current one.
template <typename Enumeration, typename MakeItem>
std::vector<MenuItem> choices(const std::array<Enumeration, allCases<Enumeration>().size()>& cases,
                              Enumeration current, MakeItem makeItem) {
    std::vector<MenuItem> items;
    for (auto value : cases) {
        items.push_back(makeItem(value));
        items.back().isChecked = value == current;
    }
    return items;
}

// Takes over, and keeps, the value of the chosen item; false if it has none of that kind.
template <typename Value>
bool choose(const MenuItem& chosen, platform::Published<Value>& current, void (*save)(Value)) {
    const auto* value = std::any_cast<Value>(&chosen.representedObject);
    if (!value)
        return false;
    current = *value;
    save(*value);
    return true;
}

} // namespace

void AppDelegate::setupMenu() {
    const TranslationMode mode = stateMachine->currentMode;
    auto menu = std::make_shared<Menu>();
    auto add = [&](MenuItem next) { menu->items.push_back(std::move(next)); };

    add(remark(platform::text::format(
        localized("menu.status.ready"),
        {nameOf("mode.", mode), nameOf("lang.", stateMachine->currentLanguage.value())})));
    add(separator());
    add(modeItem());
    add(languageItem());
    if (mode == TranslationMode::ai)
        add(styleItem());
    add(uiLanguageItem());
    add(separator());
    add(makeItem(localized("menu.launch_at_login"), &AppDelegate::toggleLoginItem));
    menu->items.back().isChecked =
        Host::current().loginItem().status() == platform::LoginItem::Status::enabled;
    add(makeItem((updateAvailable ? "🔴 " : "") + localized("menu.check_updates"),
                 &AppDelegate::checkForUpdates));
    add(makeItem(localized("menu.diagnostics"), &AppDelegate::generateDiagnostics));
    add(separator());
    add(remark(localized("menu.hint.fn")));
    add(remark(localized("menu.hint.undo")));
    add(separator());
    add(quitItem());
    statusItem_->setMenu(std::move(menu));
}

MenuItem AppDelegate::modeItem() {
    const TranslationMode current = stateMachine->currentMode;
    return submenu(localized("menu.mode") + ": " + nameOf("mode.", current),
                   choices(allCases<TranslationMode>(), current, [&](TranslationMode mode) {
                       const auto key = "mode." + std::string(rawValue(mode));
                       return makeItem(localized(key) + "  " + localized(key + ".desc"),
                                       &AppDelegate::changeMode, mode);
                   }));
}

MenuItem AppDelegate::languageItem() {
    const TargetLanguage current = stateMachine->currentLanguage;
    return submenu(localized("menu.target_language") + ": " + nameOf("lang.", current),
                   choices(allCases<TargetLanguage>(), current, [&](TargetLanguage language) {
                       return makeItem(nameOf("lang.", language), &AppDelegate::changeLanguage, language);
                   }));
}

MenuItem AppDelegate::styleItem() {
    const StylePreset current = stateMachine->currentStyle;
    return submenu(localized("menu.style") + ": " + nameOf(current),
                   choices(allCases<StylePreset>(), current, [&](StylePreset style) {
                       return makeItem(nameOf(style), &AppDelegate::changeStyle, style);
                   }));
}

MenuItem AppDelegate::uiLanguageItem() {
    using Language = LocalizationManager::Language;
    return submenu(localized("menu.language"),
                   choices(allCases<Language>(), LocalizationManager::shared().currentLanguage(),
                           [&](Language language) {
                               return makeItem(nameOf("menu.language.", language),
                                               &AppDelegate::changeUILanguage,
                                               std::string(rawValue(language)));
                           }));
}

MenuItem AppDelegate::makeItem(std::string title, MenuAction action, std::any representedObject) {
    MenuItem result;
    result.title = std::move(title);
    result.representedObject = std::move(representedObject);
    result.action = [self = weak_from_this(), action](const MenuItem& chosen) {
        if (auto delegate = self.lock())
            (*delegate.*action)(chosen);
    };
    return result;
}

// The menu is built once more after each change: observers of a value are told before it reads back as new.
void AppDelegate::changeMode(const MenuItem& chosen) {
    if (choose(chosen, stateMachine->currentMode, KeychainManager::saveMode))
        setupMenu();
}

void AppDelegate::changeLanguage(const MenuItem& chosen) {
    if (choose(chosen, stateMachine->currentLanguage, KeychainManager::saveTargetLanguage))
        setupMenu();
}

void AppDelegate::changeStyle(const MenuItem& chosen) {
    if (choose(chosen, stateMachine->currentStyle, KeychainManager::saveStyle))
        setupMenu();
}

void AppDelegate::changeUILanguage(const MenuItem& chosen) {
    const auto* text = std::any_cast<std::string>(&chosen.representedObject);
    const auto language = text ? fromRawValue<LocalizationManager::Language>(*text) : std::nullopt;
    if (!language)
        return;
    LocalizationManager::shared().setLanguage(*language);
    setupMenu();
}

void AppDelegate::generateDiagnostics(const MenuItem& /*chosen*/) {
    Host::current().application().activate();
    platform::Alert alert;
    const auto report = Diagnostics::generateReport();
    if (!report) {
        alert.style = platform::Alert::Style::warning;
        alert.messageText = localized("diagnostics.error.title");
        alert.informativeText = localized("diagnostics.error.body");
        Host::current().alerts().runModal(alert);
        return;
    }
    alert.messageText = localized("diagnostics.done.title");
    alert.informativeText =
        platform::text::format(localized("diagnostics.done.body"), {report->filename().string()});
    alert.buttons = {localized("diagnostics.done.reveal"), localized("diagnostics.done.close")};
    if (Host::current().alerts().runModal(alert) == 0)
        Host::current().workspace().reveal(*report);
}

} // namespace lumarin
