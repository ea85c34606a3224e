#include "Core/Logger.h"
#include "Platform/Host.h"
#include "main/AppDelegate.h"

namespace lumarin {

using Status = platform::LoginItem::Status;

void AppDelegate::registerLoginItem() {
    auto& loginItem = platform::Host::current().loginItem();
    if (loginItem.status() == Status::enabled)
        return;
    try {
        loginItem.registerItem();
    } catch (const std::exception&) {
        // The menu shows whether it worked, and a person who wants it can try it there.
    }
    LumLog::log("Login item registered");
    setupMenu();
}

void AppDelegate::toggleLoginItem(const platform::MenuItem& /*chosen*/) {
    auto& loginItem = platform::Host::current().loginItem();
    try {
        if (loginItem.status() == Status::enabled)
            loginItem.unregisterItem();
        else
            loginItem.registerItem();
    } catch (const std::exception& error) {
        LumLog::log(std::string("Login item toggle error: ") + error.what());
    }
    setupMenu();
}

} // namespace lumarin
