#include "main/AppDelegate.h"

#include "Core/Logger.h"
#include "Platform/Host.h"

namespace lumarin {

using platform::Host;

void AppDelegate::applicationDidFinishLaunching() {
    LumLog::log("applicationDidFinishLaunching");
    setupEditMenu();
    statusItem = Host::current().statusBar().makeStatusItem();
    statusItem->setImage({"character.bubble", "Lumarin"});
    stateMachine->setup();
    LumLog::log("App started");
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
